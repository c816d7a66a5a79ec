#include "views/SidebarFixture.h"

using namespace Qorvane;

namespace {

/// The menus of the sidebar's rows.
class SidebarContextMenuTest : public SidebarFixture
{
protected:
    void rightClick(QQuickItem *target)
    {
        const QPointF middle(target->width() / 2, target->height() / 2);
        QTest::mouseClick(window.get(), Qt::RightButton, {}, target->mapToScene(middle).toPoint());
    }

    /// The entries that the open menu shows, by the names of the items.
    QStringList entries()
    {
        QStringList names;
        for (const char *name : {"removeFromFavorites", "addToFavorites", "openInFinder", "delete"}) {
            if (popupItem(name))
                names.append(QLatin1String(name));
        }
        return names;
    }

    bool isOpen() { return popupItem("openInFinder") || popupItem("delete"); }

    QStringList openMenuOf(QQuickItem *target)
    {
        rightClick(target);
        EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
        waitForFrame();
        return entries();
    }

    void choose(const char *entry)
    {
        ASSERT_TRUE(waitUntil([&] { return popupItem(entry) != nullptr; }));
        waitForFrame();
        click(popupItem(entry));
        ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    }
};

} // namespace

TEST_F(SidebarContextMenuTest, theMenuOfAFolderAddsItToTheFavouritesAndTakesItOut)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("★"), SidebarRow::Kind::rating));
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Photos"))),
              QStringList({"addToFavorites", "openInFinder", "delete"}));
    EXPECT_EQ(selected(), QStringLiteral("★")) << "a right click selects nothing";
    choose("addToFavorites");
    ASSERT_TRUE(waitUntil([this] { return library.favoriteFolders().size() == 1; }));
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Photos"))),
              QStringList({"removeFromFavorites", "openInFinder", "delete"}));
    choose("removeFromFavorites");
    EXPECT_TRUE(waitUntil([this] { return library.favoriteFolders().isEmpty(); }));
}

TEST_F(SidebarContextMenuTest, aFavouriteOffersNoDeleteAndNoChildren)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"), {QStringLiteral("2024")});
    addFavorite(path);
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Photos"), SidebarRow::Kind::favorite)),
              QStringList({"removeFromFavorites", "openInFinder"}));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    EXPECT_FALSE(row(QStringLiteral("Photos"), SidebarRow::Kind::favorite)->property("hasChildren").toBool());
    EXPECT_TRUE(row(QStringLiteral("Photos"))->property("hasChildren").toBool());
}

TEST_F(SidebarContextMenuTest, deleteTakesAFolderOutOfTheLibraryUnasked)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    openMenuOf(row(QStringLiteral("Photos")));
    choose("delete");
    EXPECT_TRUE(waitUntil([this] { return library.libraryFolders().isEmpty(); }));
    EXPECT_TRUE(QDir(path).exists());
}

TEST_F(SidebarContextMenuTest, ratingsAndHeadersHaveNoMenu)
{
    rightClick(row(QStringLiteral("★"), SidebarRow::Kind::rating));
    rightClick(row(QStringLiteral("Tags"), SidebarRow::Kind::header));
    waitForFrame();
    EXPECT_FALSE(isOpen());
}

TEST_F(SidebarContextMenuTest, theMenuKeysOpenTheMenuOfTheCurrentRow)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("Photos")));
    press(Qt::Key_Menu);
    EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    press(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
}

TEST_F(SidebarContextMenuTest, theMenuKeyBringsTheCurrentRowIntoViewFirst)
{
    addEmptyFolder(QStringLiteral("Photos"));
    QStringList tags;
    for (int i = 0; i < 50; ++i)
        tags.append(QStringLiteral("tag %1").arg(i));
    giveTags(tags);
    click(row(QStringLiteral("Photos")));
    QQuickItem *const list = item("sidebarList");
    const auto position = [list] { return list->property("contentY").toDouble(); };
    const double top = position();
    turnWheel(list, -120 * 3);
    ASSERT_TRUE(waitUntil([&] { return position() > top + 100; }));
    const auto isInView = [&] { return row(QStringLiteral("Photos"))->mapToItem(list, QPointF()).y() >= 0; };
    ASSERT_FALSE(isInView());
    press(Qt::Key_Menu);
    EXPECT_TRUE(isInView());
    EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
}

TEST_F(SidebarContextMenuTest, aKeyRightAfterTheMenuIsTheLists)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("Photos")));
    openMenuOf(row(QStringLiteral("Photos")));
    press(Qt::Key_Escape);
    press(Qt::Key_End);
    EXPECT_EQ(library.selectedRating(), 5);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    press(Qt::Key_Up);
    EXPECT_EQ(library.selectedRating(), 4);
}

TEST_F(SidebarContextMenuTest, deletingTheSelectedTagLeavesNoRowSelected)
{
    giveTags({QStringLiteral("Beach"), QStringLiteral("Food")});
    click(row(QStringLiteral("Beach"), SidebarRow::Kind::tag));
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Beach"), SidebarRow::Kind::tag)), QStringList{"delete"});
    choose("delete");
    ASSERT_TRUE(waitUntil([this] { return library.allTags() == QStringList{"Food"}; }));
    EXPECT_EQ(library.selectedTag(), std::nullopt);
    EXPECT_EQ(selected(), QString());
}

TEST_F(SidebarContextMenuTest, isThatOfTheRowUnderThePointerInAScrolledList)
{
    QStringList tags;
    for (int i = 0; i < 50; ++i)
        tags.append(QStringLiteral("tag %1").arg(i, 2, 10, QLatin1Char('0')));
    giveTags(tags);
    waitForFrame();
    QQuickItem *const list = item("sidebarList");
    turnWheel(list, -120 * 100);
    QQuickItem *last = nullptr;
    ASSERT_TRUE(waitUntil([&] {
        last = cell("sidebarList", int(rows().size()) - 1);
        return last && last->mapToItem(list, QPointF(0, last->height())).y() <= list->height();
    }));
    EXPECT_EQ(openMenuOf(last), QStringList{"delete"});
    choose("delete");
    EXPECT_TRUE(waitUntil([&] { return library.allTags().size() == tags.size() - 1; }));
    EXPECT_FALSE(library.allTags().contains(tags.constLast()));
}
