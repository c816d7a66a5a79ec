#include "views/sidebar/SidebarListModel.h"

#include "support/Printing.h"
#include "support/ThreadTime.h"
#include "views/sidebar/SidebarCursor.h"

#include <QAbstractItemModelTester>
#include <QHash>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qorvane;

namespace {

Folder folder(const QString &path, const std::optional<QList<Folder>> &children = std::nullopt)
{
    return {FileUrl::directory(path), children};
}

class SidebarListModelTest : public testing::Test
{
protected:
    QStringList names() const
    {
        QStringList list;
        for (const SidebarRow &row : model.rows())
            list.append(row.name);
        return list;
    }

    int rowNamed(const QString &name, SidebarRow::Kind kind) const
    {
        for (int row = 0; row < model.rowCount(); ++row) {
            if (model.rows().at(row).name == name && model.rows().at(row).kind == kind)
                return row;
        }
        return -1;
    }
    int folderRow(const QString &name) const { return rowNamed(name, SidebarRow::Kind::folder); }
    int tagRow(const QString &name) const { return rowNamed(name, SidebarRow::Kind::tag); }

    QVariant data(int row, SidebarListModel::Role role) const { return model.index(row).data(role); }

    void unfold(const QString &name) { model.toggle(folderRow(name)); }

    QHash<QString, FolderProgress> progress;
    SidebarListModel model{[this](const FileUrl &url) { return progress.value(url.path()); }};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    const QList<Folder> roots{
        folder(QStringLiteral("/p/Photos"),
               QList<Folder>{folder(QStringLiteral("/p/Photos/旅行")),
                             folder(QStringLiteral("/p/Photos/Family"),
                                    QList<Folder>{folder(QStringLiteral("/p/Photos/Family/2024"))})}),
        folder(QStringLiteral("/p/Scans"))};
};

} // namespace

TEST_F(SidebarListModelTest, hasFourSectionsInTheirOrderFromTheStart)
{
    EXPECT_EQ(names(), QStringList({"Favorites", "照片库", "Ratings", "★", "★★", "★★★", "★★★★", "★★★★★",
                                    "Tags", "No tags"}));
}

TEST_F(SidebarListModelTest, noTagsIsNoRowToSelect)
{
    const SidebarRow &row = model.rows().constLast();
    EXPECT_EQ(row.kind, SidebarRow::Kind::noTags);
    EXPECT_FALSE(row.isSelectable());
    model.setSelectedId(QString());
    EXPECT_EQ(model.selectedRow(), -1);
}

TEST_F(SidebarListModelTest, tagsStandInTheirOrderInPlaceOfTheTextThatThereAreNone)
{
    model.setTags({QStringLiteral("zoo"), QStringLiteral("Beach")});
    EXPECT_EQ(names().mid(8), QStringList({"Tags", "zoo", "Beach"}));
    model.setTags({});
    EXPECT_EQ(names().mid(8), QStringList({"Tags", "No tags"}));
}

TEST_F(SidebarListModelTest, everyKindOfRowHasItsId)
{
    model.setFolders({roots.at(1)}, roots);
    model.setTags({QStringLiteral("rating-3")});
    unfold(QStringLiteral("Photos"));
    QStringList ids;
    for (const SidebarRow &row : model.rows())
        ids.append(row.id);
    EXPECT_EQ(ids, QStringList({"", "favorite-file:///p/Scans/", "", "library-file:///p/Photos/",
                                "library-file:///p/Photos/%E6%97%85%E8%A1%8C/",
                                "library-file:///p/Photos/Family/", "library-file:///p/Scans/", "",
                                "rating-1", "rating-2", "rating-3", "rating-4", "rating-5", "", "rating-3"}));
}

TEST_F(SidebarListModelTest, aFavouriteHasNoChildrenAndNoStarItsLibraryRowHasBoth)
{
    model.setFolders(roots, roots);
    const int favorite = rowNamed(QStringLiteral("Photos"), SidebarRow::Kind::favorite);
    EXPECT_FALSE(data(favorite, SidebarListModel::HasChildrenRole).toBool());
    EXPECT_FALSE(data(favorite, SidebarListModel::IsFavoriteRole).toBool());
    EXPECT_TRUE(data(folderRow(QStringLiteral("Photos")), SidebarListModel::HasChildrenRole).toBool());
    EXPECT_TRUE(data(folderRow(QStringLiteral("Photos")), SidebarListModel::IsFavoriteRole).toBool());
    model.setFolders({}, roots);
    EXPECT_FALSE(data(folderRow(QStringLiteral("Photos")), SidebarListModel::IsFavoriteRole).toBool());
}

TEST_F(SidebarListModelTest, unfoldsAndFoldsInPlace)
{
    model.setFolders({}, roots);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    unfold(QStringLiteral("Photos"));
    unfold(QStringLiteral("Family"));
    EXPECT_EQ(names().mid(1, 6), QStringList({"照片库", "Photos", "旅行", "Family", "2024", "Scans"}));
    EXPECT_EQ(data(5, SidebarListModel::DepthRole).toInt(), 2);
    EXPECT_EQ(inserted.count(), 2);
    unfold(QStringLiteral("Photos"));
    EXPECT_EQ(names().mid(1, 3), QStringList({"照片库", "Photos", "Scans"}));
    EXPECT_EQ(removed.count(), 1);
}

TEST_F(SidebarListModelTest, whatIsUnfoldedStaysSoWhenTheFoldersAreReplaced)
{
    model.setFolders({}, roots);
    unfold(QStringLiteral("Photos"));
    QList<Folder> more = roots;
    more.append(folder(QStringLiteral("/p/New")));
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    model.setFolders({}, more);
    EXPECT_EQ(names().mid(2, 5), QStringList({"Photos", "旅行", "Family", "Scans", "New"}));
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_EQ(removed.count(), 0);
}

TEST_F(SidebarListModelTest, toggleOfARowWithoutChildrenDoesNothing)
{
    model.setFolders({}, roots);
    const QStringList before = names();
    for (const int row : {-1, 0, folderRow(QStringLiteral("Scans")), 99})
        model.toggle(row);
    EXPECT_EQ(names(), before);
}

TEST_F(SidebarListModelTest, marksTheClickedRowOfAFolderInBothSectionsOnly)
{
    model.setFolders(roots, roots);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setSelectedId(QStringLiteral("library-file:///p/Scans/"));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(model.selectedRow(), folderRow(QStringLiteral("Scans")));
    EXPECT_FALSE(
        data(rowNamed(QStringLiteral("Scans"), SidebarRow::Kind::favorite), SidebarListModel::IsSelectedRole)
            .toBool());
}

TEST_F(SidebarListModelTest, aRootInsideAnotherIsMarkedInBothPlaces)
{
    model.setFolders({}, roots + QList{folder(QStringLiteral("/p/Photos/旅行"))});
    unfold(QStringLiteral("Photos"));
    model.setSelectedId(QStringLiteral("library-") +
                        FileUrl::directory(QStringLiteral("/p/Photos/旅行")).absoluteString());
    QList<int> depths;
    for (const SidebarRow &row : model.rows()) {
        if (model.isSelected(row))
            depths.append(row.depth);
    }
    EXPECT_EQ(depths, QList<int>({1, 0}));
    EXPECT_EQ(model.selectedRow(), folderRow(QStringLiteral("旅行"))) << "the keys go to the first";
}

TEST_F(SidebarListModelTest, aTagWithTheIdOfARatingIsMarkedAlone)
{
    model.setTags({QStringLiteral("rating-3")});
    model.setSelectedId(QStringLiteral("rating-3"));
    EXPECT_EQ(model.selectedRow(), tagRow(QStringLiteral("rating-3")));
    EXPECT_FALSE(
        data(rowNamed(QStringLiteral("★★★"), SidebarRow::Kind::rating), SidebarListModel::IsSelectedRole)
            .toBool());
    model.setTags({});
    EXPECT_EQ(model.selectedRow(), rowNamed(QStringLiteral("★★★"), SidebarRow::Kind::rating));
}

TEST_F(SidebarListModelTest, aReportOfARunTouchesItsRowsAndTheirRunOnly)
{
    model.setFolders({roots.at(1)}, roots);
    progress[QStringLiteral("/p/Scans")] = {FolderProcessingState::vectors, 0.5, QStringLiteral("向量: 1/2")};
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.refreshProgress();
    ASSERT_EQ(changes.count(), 2); // as a favourite and in the library
    const int row = folderRow(QStringLiteral("Scans"));
    EXPECT_EQ(changes.at(1).at(0).toModelIndex().row(), row);
    EXPECT_EQ(changes.at(1).at(1).toModelIndex().row(), row);
    EXPECT_EQ(changes.at(1).at(2).value<QList<int>>(),
              QList<int>({SidebarListModel::StateRole, SidebarListModel::ProgressRole,
                          SidebarListModel::PercentRole, SidebarListModel::DetailRole}));
    EXPECT_EQ(data(row, SidebarListModel::StateRole).toInt(), int(SidebarListModel::Vectors));
    EXPECT_EQ(data(row, SidebarListModel::ProgressRole).toDouble(), 0.5);
    EXPECT_EQ(data(row, SidebarListModel::DetailRole).toString(), QStringLiteral("向量: 1/2"));
}

TEST_F(SidebarListModelTest, thePercentageIsCutOff)
{
    model.setFolders({}, roots);
    const int row = folderRow(QStringLiteral("Scans"));
    for (const auto &[share, text] : {std::pair(0.0, "0%"), {0.019, "1%"}, {0.999, "99%"}, {1.0, "100%"}}) {
        progress[QStringLiteral("/p/Scans")] = {FolderProcessingState::thumbnails, share, QString()};
        model.refreshProgress();
        EXPECT_EQ(data(row, SidebarListModel::PercentRole).toString(), QLatin1String(text));
    }
    progress[QStringLiteral("/p/Scans")] = {FolderProcessingState::thumbnails, std::nan(""), QString()};
    model.refreshProgress();
    EXPECT_EQ(data(row, SidebarListModel::PercentRole).toString(), QStringLiteral("0%"));
}

TEST_F(SidebarListModelTest, aCountShowsNothingUntilItIsKnown)
{
    model.setTags({QStringLiteral("Beach")});
    const int rating = rowNamed(QStringLiteral("★★★"), SidebarRow::Kind::rating);
    EXPECT_EQ(data(rating, SidebarListModel::CountRole).toString(), QString());
    EXPECT_EQ(data(tagRow(QStringLiteral("Beach")), SidebarListModel::CountRole).toString(), QString());

    model.setCounts({{{QStringLiteral("Beach"), 42}}, {{5, 1}}});
    EXPECT_EQ(data(tagRow(QStringLiteral("Beach")), SidebarListModel::CountRole).toString(),
              QStringLiteral("42"));
    EXPECT_EQ(data(rating, SidebarListModel::CountRole).toString(), QStringLiteral("0"));
    EXPECT_EQ(data(rating + 2, SidebarListModel::CountRole).toString(), QStringLiteral("1"));

    model.setTags({QStringLiteral("Beach"), QStringLiteral("New")});
    EXPECT_EQ(data(tagRow(QStringLiteral("Beach")), SidebarListModel::CountRole).toString(),
              QStringLiteral("42"));
    EXPECT_EQ(data(tagRow(QStringLiteral("New")), SidebarListModel::CountRole).toString(), QString());
}

TEST_F(SidebarListModelTest, aTagThatLostItsLastFileShowsZero)
{
    model.setTags({QStringLiteral("Beach")});
    model.setCounts({{{QStringLiteral("Beach"), 1}}, {}});
    model.setCounts({{}, {}});
    EXPECT_EQ(data(tagRow(QStringLiteral("Beach")), SidebarListModel::CountRole).toString(),
              QStringLiteral("0"));
}

TEST_F(SidebarListModelTest, aCountTouchesTheRowsThatChangedOnly)
{
    model.setTags({QStringLiteral("Beach"), QStringLiteral("Food"), QStringLiteral("Zoo")});
    model.setCounts(
        {{{QStringLiteral("Beach"), 1}, {QStringLiteral("Food"), 2}, {QStringLiteral("Zoo"), 3}}, {}});
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setCounts(
        {{{QStringLiteral("Beach"), 1}, {QStringLiteral("Food"), 9}, {QStringLiteral("Zoo"), 3}}, {}});
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.at(0).at(0).toModelIndex().row(), tagRow(QStringLiteral("Food")));
    EXPECT_EQ(changes.at(0).at(1).toModelIndex().row(), tagRow(QStringLiteral("Food")));
    EXPECT_EQ(changes.at(0).at(2).value<QList<int>>(),
              QList<int>({SidebarListModel::CountRole, SidebarListModel::SpokenRole}));
}

TEST_F(SidebarListModelTest, rowsAreSpokenWithTheirCounts)
{
    model.setTags({QStringLiteral("Beach")});
    model.setCounts({{{QStringLiteral("Beach"), 42}}, {{3, 14}}});
    EXPECT_EQ(data(tagRow(QStringLiteral("Beach")), SidebarListModel::SpokenRole).toString(),
              QStringLiteral("Beach, 42 items"));
    EXPECT_EQ(data(rowNamed(QStringLiteral("★★★"), SidebarRow::Kind::rating), SidebarListModel::SpokenRole)
                  .toString(),
              QStringLiteral("3 stars, 14 items"));
}

TEST_F(SidebarListModelTest, thousandsOfTagsAndFoldersFollowEachChangeAtOnce)
{
    constexpr int tagCount = 5'000;
    constexpr int folderCount = 2'000;
    // What the tester checks after each change would be measured instead.
    SidebarListModel large([this](const FileUrl &url) { return progress.value(url.path()); });
    QStringList tags;
    TagAndRatingCounts counts;
    for (int i = 0; i < tagCount; ++i) {
        tags.append(QStringLiteral("tag %1").arg(i, 5, 10, QLatin1Char('0')));
        counts.tags.insert(tags.constLast(), i + 1);
    }
    QList<Folder> children;
    for (int i = 0; i < folderCount; ++i)
        children.append(folder(QStringLiteral("/p/Photos/%1").arg(i)));

    double slowest = 0;
    const auto measure = [this, &slowest](const char *name, const auto &change) {
        const double before = processorSecondsOfThisThread();
        change();
        const double seconds = processorSecondsOfThisThread() - before;
        slowest = std::max(slowest, seconds);
        RecordProperty(name, int(seconds * 1e6));
    };
    measure("tags", [&] { large.setTags(tags); });
    measure("counts", [&] { large.setCounts(counts); });
    measure("folders", [&] { large.setFolders({}, {folder(QStringLiteral("/p/Photos"), children)}); });
    measure("unfold", [&] { large.toggle(2); });
    measure("selection", [&] { large.setSelectedId(tags.constLast()); });
    progress[QStringLiteral("/p/Photos/1999")] = {FolderProcessingState::vectors, 0.5, QString()};
    QSignalSpy changes(&large, &QAbstractItemModel::dataChanged);
    measure("report", [&] { large.refreshProgress(); });
    EXPECT_EQ(changes.count(), 1);
    measure("oneTagLess", [&] { large.setTags(tags.mid(1)); });
    children.removeFirst();
    measure("oneFolderLess", [&] { large.setFolders({}, {folder(QStringLiteral("/p/Photos"), children)}); });
    EXPECT_EQ(large.rowCount(), 2 + folderCount + 6 + 1 + tagCount - 1);
    // A change takes some milliseconds, and some ten times as long under a sanitizer; rows gone through for
    // every row take seconds.
    EXPECT_LT(slowest, 0.25);
}

TEST_F(SidebarListModelTest, theCursorStaysWithItsRow)
{
    SidebarCursor cursor(model);
    model.setFolders({}, roots);
    cursor.set(folderRow(QStringLiteral("Scans")));
    unfold(QStringLiteral("Photos"));
    EXPECT_EQ(cursor.row(), folderRow(QStringLiteral("Scans")));
    model.setFolders(roots, roots);
    EXPECT_EQ(cursor.row(), folderRow(QStringLiteral("Scans")));
    unfold(QStringLiteral("Photos"));
    EXPECT_EQ(cursor.row(), folderRow(QStringLiteral("Scans")));
}

TEST_F(SidebarListModelTest, theCursorOfARowThatIsFoldedAwayGoesToTheOneAbove)
{
    SidebarCursor cursor(model);
    model.setFolders({}, roots);
    unfold(QStringLiteral("Photos"));
    cursor.set(folderRow(QStringLiteral("Family")));
    unfold(QStringLiteral("Photos"));
    EXPECT_EQ(cursor.row(), folderRow(QStringLiteral("Photos")));
}

TEST_F(SidebarListModelTest, theCursorOfTheLastTagLeavesForARowThatCanBeSelected)
{
    SidebarCursor cursor(model);
    model.setTags({QStringLiteral("Beach")});
    cursor.set(tagRow(QStringLiteral("Beach")));
    model.setTags({});
    EXPECT_EQ(cursor.row(), rowNamed(QStringLiteral("★★★★★"), SidebarRow::Kind::rating));
}
