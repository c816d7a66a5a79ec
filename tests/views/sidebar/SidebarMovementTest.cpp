#include "views/sidebar/SidebarMovement.h"

#include "views/sidebar/SidebarSections.h"

#include <gtest/gtest.h>

using namespace Qorvane;
using SidebarMovement::Key;
using SidebarMovement::Step;

namespace {

// 0 Favorites, 1 the library's header, 2 Photos, 3 旅行, 4 Family, 5 Scans, 6 Ratings, 7 to 11 the ratings,
// 12 Tags, 13 "No tags"
QList<SidebarRow> makeRows(const QStringList &tags = {})
{
    const auto folder = [](const QString &path) { return Folder{FileUrl::directory(path), std::nullopt}; };
    SidebarContent content;
    Folder photos = folder(QStringLiteral("/p/Photos"));
    photos.children = QList<Folder>{folder(QStringLiteral("/p/Photos/旅行")),
                                    {FileUrl::directory(QStringLiteral("/p/Photos/Family")),
                                     QList<Folder>{folder(QStringLiteral("/p/Photos/Family/2024"))}}};
    content.roots = {photos, folder(QStringLiteral("/p/Scans"))};
    content.expanded = {photos.url};
    content.tags = tags;
    return SidebarSections::folderRows(content, [](const FileUrl &) { return FolderProgress(); }) +
           SidebarSections::ratingAndTagRows(content);
}

} // namespace

TEST(SidebarMovement, upAndDownPassHeadersOver)
{
    const QList<SidebarRow> rows = makeRows();
    EXPECT_EQ(move(rows, 2, Key::down), Step{3});
    EXPECT_EQ(move(rows, 5, Key::down), Step{7});
    EXPECT_EQ(move(rows, 7, Key::up), Step{5});
}

TEST(SidebarMovement, endsAtTheEnds)
{
    const QList<SidebarRow> rows = makeRows();
    EXPECT_EQ(move(rows, 2, Key::up), std::nullopt);
    EXPECT_EQ(move(rows, 11, Key::down), std::nullopt) << "\"No tags\" is no row to go to";
}

TEST(SidebarMovement, homeAndEndGoToTheFirstAndTheLastRowThatCanBeSelected)
{
    EXPECT_EQ(move(makeRows(), 5, Key::home), Step{2});
    EXPECT_EQ(move(makeRows(), 5, Key::end), Step{11});
    EXPECT_EQ(move(makeRows({QStringLiteral("Beach")}), 5, Key::end), Step{13});
}

TEST(SidebarMovement, fromNowhereTheKeysEnterTheList)
{
    const QList<SidebarRow> rows = makeRows();
    EXPECT_EQ(move(rows, -1, Key::down), Step{2});
    EXPECT_EQ(move(rows, -1, Key::up), Step{11});
    EXPECT_EQ(move(rows, -1, Key::left), std::nullopt);
    EXPECT_EQ(move(rows, -1, Key::right), std::nullopt);
    EXPECT_EQ(move({}, -1, Key::down), std::nullopt);
}

TEST(SidebarMovement, leftFoldsOrGoesToTheFolderAround)
{
    const QList<SidebarRow> rows = makeRows();
    EXPECT_EQ(move(rows, 2, Key::left), (Step{2, true}));
    EXPECT_EQ(move(rows, 4, Key::left), Step{2});
    EXPECT_EQ(move(rows, 5, Key::left), std::nullopt);
    EXPECT_EQ(move(rows, 9, Key::left), std::nullopt);
}

TEST(SidebarMovement, rightUnfoldsOrGoesToTheFirstFolderInside)
{
    const QList<SidebarRow> rows = makeRows();
    EXPECT_EQ(move(rows, 4, Key::right), (Step{4, true}));
    EXPECT_EQ(move(rows, 2, Key::right), Step{3});
    EXPECT_EQ(move(rows, 5, Key::right), std::nullopt);
}

TEST(SidebarMovement, typingFindsTheNextRowThatBeginsSo)
{
    const QList<SidebarRow> rows = makeRows({QStringLiteral("Sea"), QStringLiteral("Snow")});
    EXPECT_EQ(SidebarMovement::find(rows, 2, QStringLiteral("s")), 5);
    EXPECT_EQ(SidebarMovement::find(rows, 5, QStringLiteral("s")), 13);
    EXPECT_EQ(SidebarMovement::find(rows, 13, QStringLiteral("sn")), 14);
    EXPECT_EQ(SidebarMovement::find(rows, 13, QStringLiteral("se")), 13) << "the row still begins so";
    EXPECT_EQ(SidebarMovement::find(rows, 14, QStringLiteral("s")), 5) << "from the top again";
    EXPECT_EQ(SidebarMovement::find(rows, 2, QStringLiteral("tags")), std::nullopt)
        << "a header is no row to go to";
    EXPECT_EQ(SidebarMovement::find({}, -1, QStringLiteral("s")), std::nullopt);
}
