#include "views/window/ContentViewState.h"

#include "library/BusyStore.h"
#include "library/QorManage.h"
#include "platform/UserDefaults.h"
#include "store/EmbeddingStore.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"
#include "views/pictures/PictureQueue.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Qorvane;

namespace {

/// The window's state without the window, over a real library.
class ContentViewStateTest : public testing::Test
{
protected:
    ContentViewStateTest() { QDir(m_place.path()).mkdir(QStringLiteral("one")); }
    ~ContentViewStateTest() override
    {
        EmbeddingStore::shared().deleteTagGlobally(QStringLiteral("Beach"));
        UserDefaults::standard().remove(QStringLiteral("libraryFolders"));
    }

    /// The sidebar keeps no tag selected that the library does not list.
    void giveTag()
    {
        EmbeddingStore::shared().addTag(QStringLiteral("/p/a.jpg"), QStringLiteral("Beach"));
        m_library.refreshAllTags();
        ASSERT_TRUE(waitUntil([this] { return !m_library.allTags().isEmpty(); }));
    }

    static QCoro::Task<QList<SearchResult>> findNothing() { co_return {}; }

    /// The row of the first folder, once it is there: below the headers of the favourites and of the library.
    QPersistentModelIndex folderRow()
    {
        EXPECT_TRUE(waitUntil([this] { return m_library.libraryFolders().size() == 1; }));
        return m_state.sidebar()->rows()->index(2);
    }

    QUrl url(const QString &name) const { return QUrl::fromLocalFile(m_place.filePath(name)); }

    // Without a "-", which would keep the sidebar from opening the folders in it.
    const QTemporaryDir m_place{QDir::temp().filePath(QStringLiteral("QorvaneStateXXXXXX"))};
    const LogCapture m_log;
    QorManage m_library;
    ContentViewState m_state{m_library, [](auto &&...) { return findNothing(); },
                             std::make_shared<PictureQueue>(1)};
};

// 60 times a second is as often as anybody can see it.
constexpr int frame = 16;

} // namespace

TEST_F(ContentViewStateTest, aFloodOfReportsRefreshesTheRowsOnceAFrame)
{
    constexpr int reports = 100'000;
    m_state.folderAdding()->add({url(QStringLiteral("one"))});
    const QPersistentModelIndex row = folderRow();
    ASSERT_TRUE(waitUntil(
        [&row] { return row.data(SidebarListModel::StateRole).toInt() == SidebarListModel::Completed; }));

    int refreshes = 0;
    QObject::connect(m_state.sidebar()->rows(), &QAbstractItemModel::dataChanged, &m_library,
                     [&](const QModelIndex &first) { refreshes += first == row ? 1 : 0; });
    QElapsedTimer timer;
    timer.start();
    const QString path = m_place.filePath(QStringLiteral("one"));
    std::thread run([this, &path] {
        for (int i = 1; i <= reports; ++i)
            m_library.setProcessing(path, FolderProcessingState::thumbnails, double(i) / reports,
                                    QString::number(i));
    });
    const bool isThrough = waitUntil(
        [&row] { return row.data(SidebarListModel::DetailRole).toString() == QString::number(reports); });
    run.join();
    ASSERT_TRUE(isThrough);
    EXPECT_LE(refreshes, timer.elapsed() / frame + 1);
    EXPECT_EQ(row.data(SidebarListModel::ProgressRole).toDouble(), 1.0);
    RecordProperty("milliseconds", int(timer.elapsed()));
    RecordProperty("refreshes", refreshes);
}

TEST_F(ContentViewStateTest, theRowsFollowWhileAFloodOfReportsGoesOn)
{
    constexpr int moreThanAnyRunReports = 1'000'000;
    m_state.folderAdding()->add({url(QStringLiteral("one"))});
    const QPersistentModelIndex row = folderRow();
    const QString path = m_place.filePath(QStringLiteral("one"));
    std::atomic_bool isSeen = false;
    bool hasWaited = false;
    std::thread run([&] {
        int i = 0;
        while (!isSeen && ++i < moreThanAnyRunReports)
            m_library.setProcessing(path, FolderProcessingState::thumbnails, 0.5, QStringLiteral("half"));
        hasWaited = i == moreThanAnyRunReports;
    });
    isSeen = waitUntil([&row] { return row.data(SidebarListModel::ProgressRole).toDouble() == 0.5; });
    run.join();
    EXPECT_TRUE(isSeen);
    EXPECT_FALSE(hasWaited) << "nothing moved until the reports were over";
    drainMainQueue();
}

TEST_F(ContentViewStateTest, aTagChosenOverAFolderIsAnnouncedOnce)
{
    giveTag();
    m_state.folderAdding()->add({url(QStringLiteral("one"))});
    folderRow();
    m_library.setSelectedFolder(m_library.libraryFolders().constFirst());
    ASSERT_EQ(m_state.pages()->title(), QStringLiteral("one"));
    const QString folderScope = m_state.pages()->scope();
    const QSignalSpy announced(m_state.pages(), &ContentPages::scopeChanged);
    m_library.setSelectedTag(QStringLiteral("Beach"));
    EXPECT_EQ(announced.count(), 1);
    EXPECT_EQ(m_state.pages()->title(), QStringLiteral("Beach"));
    EXPECT_NE(m_state.pages()->scope(), folderScope);
    // Equal, and announced by the library all the same.
    m_library.setSelectedTag(QStringLiteral("Beach"));
    EXPECT_EQ(announced.count(), 1);
    EXPECT_TRUE(waitUntil([this] { return !m_library.isLoading(); }));
}

TEST_F(ContentViewStateTest, openingAFileTakesTheKeysToItAndLeavingItDeselectsEverything)
{
    const QSet<FileUrl> one{FileUrl::file(m_place.filePath(QStringLiteral("one.jpg")))};
    m_state.selection().setUrls(one);
    m_state.setDetailViewActive(true);
    EXPECT_EQ(m_state.focus()->focusedField(), FocusableField::detail);
    EXPECT_EQ(m_state.selection().urls(), one);
    m_state.setDetailViewActive(false);
    EXPECT_EQ(m_state.focus()->focusedField(), FocusableField::sidebar);
    EXPECT_TRUE(m_state.selection().urls().isEmpty());
}

TEST_F(ContentViewStateTest, aQueryTypedOverAnOpenFileLeavesItAndTheSelection)
{
    m_state.selection().setUrls({FileUrl::file(m_place.filePath(QStringLiteral("one.jpg")))});
    m_state.setDetailViewActive(true);
    m_state.focus()->setLentToSearch(true);
    const QSignalSpy keysTaken(m_state.focus(), &ColumnFocus::sidebarWanted);
    m_state.search()->setText(QStringLiteral("c"));
    EXPECT_FALSE(m_state.isDetailViewActive());
    EXPECT_TRUE(m_state.selection().urls().isEmpty());
    EXPECT_EQ(m_state.focus()->focusedField(), FocusableField::sidebar);
    EXPECT_EQ(keysTaken.count(), 0) << "the rest of the word would be lost";
    drainMainQueue();
}

TEST_F(ContentViewStateTest, aNewQueryNeverShowsThatNothingWasFound)
{
    QList<ContentPage::Page> pages;
    const QObject listener;
    QObject::connect(m_state.pages(), &ContentPages::pageChanged, &listener,
                     [&] { pages.append(m_state.pages()->page()); });
    m_state.search()->setText(QStringLiteral("c"));
    EXPECT_EQ(pages, QList<ContentPage::Page>{ContentPage::Searching});
    drainMainQueue();
}

TEST_F(ContentViewStateTest, emptyingTheFieldLeavesAnOpenFileOpen)
{
    m_state.search()->setText(QStringLiteral("c"));
    m_state.setDetailViewActive(true);
    m_state.search()->setText({});
    EXPECT_TRUE(m_state.isDetailViewActive());
    drainMainQueue();
}

TEST_F(ContentViewStateTest, aFolderOrARatingEndsTheSearchAndLeavesTheOpenFile)
{
    const auto choose = [this](const std::function<void()> &change) {
        m_state.search()->setText(QStringLiteral("cat"));
        m_state.setDetailViewActive(true);
        change();
        EXPECT_FALSE(m_state.isDetailViewActive());
        EXPECT_EQ(m_state.search()->text(), QString());
        EXPECT_FALSE(m_state.search()->isSearching());
    };
    choose([this] { m_library.setSelectedFolder(Folder{FileUrl::directory(m_place.path()), {}}); });
    choose([this] { m_library.setSelectedRating(3); });
    choose([this] { m_library.setSelectedRating(std::nullopt); });
    drainMainQueue();
}

TEST_F(ContentViewStateTest, anotherFolderOrRatingLeavesTheSelection)
{
    const QSet<FileUrl> one{FileUrl::file(m_place.filePath(QStringLiteral("one.jpg")))};
    m_state.selection().setUrls(one);
    m_library.setSelectedFolder(Folder{FileUrl::directory(m_place.path()), {}});
    EXPECT_EQ(m_state.selection().urls(), one);
    m_library.setSelectedRating(3);
    EXPECT_EQ(m_state.selection().urls(), one);
    drainMainQueue();
}

TEST_F(ContentViewStateTest, aTagPickedInTheSidebarKeepsTheQuery)
{
    giveTag();
    m_state.search()->setText(QStringLiteral("cat"));
    m_state.sidebar()->pressKey(Qt::Key_End, {});
    EXPECT_EQ(m_library.selectedTag(), QStringLiteral("Beach"));
    EXPECT_EQ(m_state.search()->text(), QStringLiteral("cat"));
    drainMainQueue();
}

TEST_F(ContentViewStateTest, aTagLeavesTheOpenFileButKeepsTheQuery)
{
    giveTag();
    m_state.search()->setText(QStringLiteral("cat"));
    m_state.setDetailViewActive(true);
    m_library.setSelectedTag(QStringLiteral("Beach"));
    EXPECT_FALSE(m_state.isDetailViewActive());
    EXPECT_EQ(m_state.search()->text(), QStringLiteral("cat"));
    drainMainQueue();
}

TEST_F(ContentViewStateTest, aSearchInATagCoversWhatWasTaggedRightBefore)
{
    giveTag();
    m_library.setSelectedTag(QStringLiteral("Beach"));
    QList<QList<FileUrl>> scopes;
    ContentViewState state(
        m_library,
        [&scopes](const QString &, const QList<FileUrl> &scope, int) {
            scopes.append(scope);
            return findNothing();
        },
        std::make_shared<PictureQueue>(1));
    QList<FileUrl> tagged;
    BusyStore busy;
    for (int i = 0; i < 8; ++i) {
        const QString name = QStringLiteral("%1.jpg").arg(i);
        ASSERT_TRUE(QFile(m_place.filePath(name)).open(QIODevice::WriteOnly));
        tagged.append(FileUrl::file(m_place.filePath(name)));
        m_library.addTag(QStringLiteral("Beach"), tagged.last());
    }
    state.search()->setText(QStringLiteral("cat"));
    drainMainQueue();
    busy.end();
    ASSERT_TRUE(waitUntil([&scopes] { return !scopes.isEmpty(); }));
    EXPECT_THAT(scopes.first(), testing::UnorderedElementsAreArray(tagged));
}

TEST_F(ContentViewStateTest, aTagThatStaysTheSameLeavesTheOpenFileOpen)
{
    giveTag();
    m_state.setDetailViewActive(true);
    m_library.setSelectedTag(std::nullopt);
    EXPECT_TRUE(m_state.isDetailViewActive());
    m_library.setSelectedTag(QStringLiteral("Beach"));
    m_state.setDetailViewActive(true);
    m_library.setSelectedTag(QStringLiteral("Beach"));
    EXPECT_TRUE(m_state.isDetailViewActive());
    drainMainQueue();
}

TEST_F(ContentViewStateTest, theKeysGoToTheSidebarAMomentAfterTheWindowHasAppeared)
{
    QSignalSpy keysTaken(m_state.focus(), &ColumnFocus::sidebarWanted);
    QElapsedTimer timer;
    timer.start();
    m_state.appear();
    EXPECT_EQ(m_state.focus()->focusedField(), std::nullopt);
    ASSERT_TRUE(keysTaken.wait());
    EXPECT_GE(timer.elapsed(), 95); // a coarse timer may be 5 % early
    EXPECT_EQ(m_state.focus()->focusedField(), FocusableField::sidebar);
}
