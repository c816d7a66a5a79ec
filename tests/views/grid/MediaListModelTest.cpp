#include "views/grid/MediaListModel.h"

#include "platform/NotificationCenter.h"
#include "support/Waiting.h"
#include "views/pictures/ThumbnailRevisions.h"
#include "views/selection/MediaSelection.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

FileUrl file(const char *name)
{
    return FileUrl::file(QStringLiteral("/photos/") + QString::fromLatin1(name));
}

class MediaListModelTest : public testing::Test
{
protected:
    MediaSelection selection;
    ThumbnailRevisions revisions;
    MediaListModel model{selection, revisions,
                         [](const FileUrl &url) { return url.pathExtension() == QLatin1String("mp4"); }};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QSignalSpy resets{&model, &QAbstractItemModel::modelReset};
    QSignalSpy removals{&model, &QAbstractItemModel::rowsRemoved};
};

} // namespace

TEST_F(MediaListModelTest, showsPathNameAndKindOfEachFile)
{
    model.setUrls({file("a.jpg"), file("b.mp4")});
    ASSERT_EQ(model.rowCount(), 2);
    EXPECT_EQ(model.index(0).data(MediaListModel::PathRole).toString(), QStringLiteral("/photos/a.jpg"));
    EXPECT_EQ(model.index(0).data(MediaListModel::NameRole).toString(), QStringLiteral("a.jpg"));
    EXPECT_FALSE(model.index(0).data(MediaListModel::IsVideoRole).toBool());
    EXPECT_TRUE(model.index(1).data(MediaListModel::IsVideoRole).toBool());
}

TEST_F(MediaListModelTest, anotherListKeepsTheRowsForOtherFiles)
{
    model.setUrls({file("a.jpg"), file("b.jpg"), file("c.jpg")});
    QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
    model.setUrls({file("b.jpg"), file("x.jpg")});
    EXPECT_EQ(model.urls(), (QList<FileUrl>{file("b.jpg"), file("x.jpg")}));
    EXPECT_EQ(removals.count(), 1);
    model.setUrls({file("y.jpg"), file("b.jpg"), file("z.jpg"), file("a.jpg")});
    EXPECT_EQ(insertions.count(), 1);
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(model.index(0).data(MediaListModel::NameRole).toString(), QStringLiteral("y.jpg"));
    EXPECT_EQ(model.index(3).data(MediaListModel::NameRole).toString(), QStringLiteral("a.jpg"));
}

TEST_F(MediaListModelTest, theSameListChangesNothing)
{
    model.setUrls({file("a.jpg")});
    const QSignalSpy changes(&model, &MediaListModel::urlsChanged);
    model.setUrls({file("a.jpg")});
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(MediaListModelTest, anEmptyListInBetweenThrowsNoCellsAway)
{
    model.setUrls({file("a.jpg"), file("b.jpg")});
    const QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
    model.setUrls({});
    EXPECT_EQ(removals.count(), 1);
    EXPECT_EQ(model.rowCount(), 0);
    model.setUrls({file("c.jpg"), file("d.jpg")});
    EXPECT_EQ(insertions.count(), 1);
    EXPECT_EQ(resets.count(), 0);
}

TEST_F(MediaListModelTest, lostEntriesTakeOnlyTheirRows)
{
    model.setUrls({file("a.jpg"), file("b.jpg"), file("c.jpg"), file("d.jpg"), file("e.jpg")});
    model.setUrls({file("a.jpg"), file("d.jpg")});
    EXPECT_EQ(resets.count(), 0);
    ASSERT_EQ(removals.count(), 2);
    EXPECT_EQ(removals.at(0).at(1).toInt(), 1);
    EXPECT_EQ(removals.at(0).at(2).toInt(), 2);
    EXPECT_EQ(model.urls(), (QList<FileUrl>{file("a.jpg"), file("d.jpg")}));
}

TEST_F(MediaListModelTest, selectionChangesOnlyTheRowsConcerned)
{
    model.setUrls({file("a.jpg"), file("b.jpg"), file("c.jpg")});
    selection.setUrls({file("a.jpg")});
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.click(2, false);
    ASSERT_EQ(changes.count(), 2);
    EXPECT_EQ(changes.at(0).at(0).toModelIndex().row(), 0);
    EXPECT_EQ(changes.at(1).at(0).toModelIndex().row(), 2);
    EXPECT_FALSE(model.index(0).data(MediaListModel::IsSelectedRole).toBool());
    EXPECT_TRUE(model.index(2).data(MediaListModel::IsSelectedRole).toBool());
}

TEST_F(MediaListModelTest, arrowKeysMoveAndOthersAreLeftAlone)
{
    model.setUrls({file("a.jpg"), file("b.jpg"), file("c.jpg")});
    EXPECT_EQ(model.handleKey(Qt::Key_Down, 2), 2);
    EXPECT_EQ(model.handleKey(Qt::Key_Left, 2), 1);
    EXPECT_EQ(model.handleKey(Qt::Key_Return, 2), -1);
    EXPECT_EQ(model.handleKey(Qt::Key_Space, 2), -1);
    EXPECT_EQ(selection.urls(), QSet<FileUrl>{file("b.jpg")});
}

TEST_F(MediaListModelTest, anArrowAtTheEdgeStaysAndSelects)
{
    model.setUrls({file("a.jpg"), file("b.jpg")});
    EXPECT_EQ(model.handleKey(Qt::Key_Left, 2), 0);
    EXPECT_EQ(selection.urls(), QSet<FileUrl>{file("a.jpg")});
}

TEST_F(MediaListModelTest, anArrowOverNoCellsIsNotHandled)
{
    selection.setUrls({file("a.jpg")});
    EXPECT_EQ(model.handleKey(Qt::Key_Right, 2), -1);
    EXPECT_EQ(selection.urls(), QSet<FileUrl>{file("a.jpg")});
}

TEST_F(MediaListModelTest, anArrowStartsFromTheFirstSelectedOfTheListThatIsShown)
{
    model.setUrls({file("a.jpg"), file("b.jpg"), file("c.jpg")});
    selection.setUrls({file("c.jpg"), file("b.jpg")});
    EXPECT_EQ(model.handleKey(Qt::Key_Left, 2), 0);
    model.setUrls({file("c.jpg"), file("b.jpg"), file("a.jpg")});
    EXPECT_EQ(model.firstSelectedRow(), 2);
    EXPECT_EQ(model.handleKey(Qt::Key_Left, 2), 1);
    selection.clear();
    EXPECT_EQ(model.handleKey(Qt::Key_Right, 2), 1);
}

TEST_F(MediaListModelTest, everyChangeOfTheListMovesTheFirstSelectedRow)
{
    selection.setUrls({file("d.jpg")});
    // Whoever follows the rows asks in the midst of a change too.
    const auto ask = [this] { (void)model.firstSelectedRow(); };
    QObject::connect(&model, &QAbstractItemModel::rowsRemoved, &model, ask);
    QObject::connect(&model, &QAbstractItemModel::dataChanged, &model, ask);
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, &model, ask);
    model.setUrls({file("a.jpg"), file("b.jpg"), file("c.jpg"), file("d.jpg")});
    EXPECT_EQ(model.firstSelectedRow(), 3);
    model.setUrls({file("b.jpg"), file("d.jpg")});
    EXPECT_EQ(model.firstSelectedRow(), 1);
    model.setUrls({file("x.jpg"), file("y.jpg"), file("d.jpg")});
    EXPECT_EQ(model.firstSelectedRow(), 2);
    model.setUrls({file("d.jpg"), file("y.jpg")});
    EXPECT_EQ(model.firstSelectedRow(), 0);
    model.setUrls({});
    EXPECT_EQ(model.firstSelectedRow(), -1);
}

TEST_F(MediaListModelTest, namesTheFilesInView)
{
    model.setUrls({file("a.jpg"), file("b.jpg"), file("c.jpg"), file("d.jpg")});
    QSet<QString> visible;
    QObject::connect(&model, &MediaListModel::visiblePathsChanged, &model,
                     [&visible](const QSet<QString> &paths) { visible = paths; });
    model.setViewport(210, 100, 210, 2);
    EXPECT_EQ(visible, (QSet<QString>{QStringLiteral("/photos/c.jpg"), QStringLiteral("/photos/d.jpg")}));
}

TEST_F(MediaListModelTest, namesTheFilesInViewAnewAfterAnotherList)
{
    model.setUrls({file("a.jpg"), file("b.jpg")});
    model.setViewport(0, 100, 210, 2);
    model.setUrls({file("x.jpg"), file("y.jpg")});
    QSignalSpy announcements(&model, &MediaListModel::visiblePathsChanged);
    model.setViewport(0, 100, 210, 2);
    EXPECT_EQ(announcements.count(), 1);
}

TEST_F(MediaListModelTest, aGridThatWasHiddenTellsItsFilesAgain)
{
    model.setUrls({file("a.jpg"), file("b.jpg")});
    model.setViewport(0, 100, 210, 2);
    QSignalSpy announcements(&model, &MediaListModel::visiblePathsChanged);
    model.setViewport(0, 100, 210, 2);
    model.leaveViewport();
    EXPECT_EQ(announcements.count(), 0);
    model.setViewport(0, 100, 210, 2);
    EXPECT_EQ(announcements.count(), 1);
}

TEST_F(MediaListModelTest, aChangedPictureConcernsItsRowAlone)
{
    model.setUrls({file("a.jpg"), file("b.jpg"), file("c.jpg")});
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    NotificationCenter::defaultCenter().post(QStringLiteral("ImageTransformed"),
                                             {{QStringLiteral("url"), QVariant::fromValue(file("b.jpg"))}});
    ASSERT_TRUE(waitUntil([&changes] { return changes.count() == 1; }));
    EXPECT_EQ(changes.at(0).at(0).toModelIndex().row(), 1);
    EXPECT_EQ(changes.at(0).at(2).value<QList<int>>(), QList<int>{MediaListModel::RevisionRole});
    EXPECT_EQ(model.index(1).data(MediaListModel::RevisionRole).toInt(),
              model.index(0).data(MediaListModel::RevisionRole).toInt() + 1);
}

// The toolkit keeps pictures by their number when a window goes.
TEST_F(MediaListModelTest, anotherWindowCountsOnFromWhereThisOneIs)
{
    NotificationCenter::defaultCenter().post(QStringLiteral("ImageTransformed"),
                                             {{QStringLiteral("url"), QVariant::fromValue(file("b.jpg"))}});
    drainMainQueue();
    const ThumbnailRevisions later;
    EXPECT_GT(later.revisionOf(file("b.jpg")), revisions.revisionOf(file("b.jpg")));
}

TEST_F(MediaListModelTest, aChangeBeforeTheFileIsListedCounts)
{
    NotificationCenter::defaultCenter().post(QStringLiteral("ImageTransformed"),
                                             {{QStringLiteral("url"), QVariant::fromValue(file("b.jpg"))}});
    NotificationCenter::defaultCenter().post(QStringLiteral("ImageTransformed"));
    drainMainQueue();
    model.setUrls({file("a.jpg"), file("b.jpg")});
    EXPECT_EQ(model.index(1).data(MediaListModel::RevisionRole).toInt(),
              model.index(0).data(MediaListModel::RevisionRole).toInt() + 1);
}

TEST_F(MediaListModelTest, namesTheFirstSelectedRowInDisplayOrder)
{
    model.setUrls({file("a.jpg"), file("b.jpg"), file("c.jpg")});
    EXPECT_EQ(model.firstSelectedRow(), -1);
    selection.setUrls({file("c.jpg"), file("b.jpg"), file("elsewhere.jpg")});
    EXPECT_EQ(model.firstSelectedRow(), 1);
    EXPECT_EQ(model.path(1), QStringLiteral("/photos/b.jpg"));
    model.selectAlone(2);
    EXPECT_EQ(selection.urls(), QSet<FileUrl>{file("c.jpg")});
    model.selectAlone(3);
    EXPECT_EQ(selection.urls(), QSet<FileUrl>{file("c.jpg")});
}
