#include "views/sidebar/SidebarCounts.h"

#include "platform/MainQueue.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QSignalSpy>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

using namespace Qorvane;

namespace {

TagAndRatingCounts beaches(int count)
{
    return {{{QStringLiteral("Beach"), count}}, {{3, count}}};
}

} // namespace

TEST(SidebarCounts, areReadInTheBackground)
{
    std::atomic<QThread *> thread = nullptr;
    SidebarCounts counts([&thread] {
        thread = QThread::currentThread();
        return beaches(1);
    });
    QSignalSpy changes(&counts, &SidebarCounts::changed);
    counts.refresh();
    ASSERT_TRUE(waitUntil([&changes] { return changes.count() == 1; }));
    EXPECT_NE(thread.load(), QThread::currentThread());
}

TEST(SidebarCounts, manyChangesMakeFewReads)
{
    constexpr int announcements = 10'000;
    std::atomic_int reads = 0;
    SidebarCounts counts([&reads] { return beaches(++reads); });
    QSignalSpy changes(&counts, &SidebarCounts::changed);
    for (int i = 0; i < announcements; ++i)
        counts.refresh();
    ASSERT_TRUE(waitUntil([&changes] { return changes.count() == 1; }));
    EXPECT_EQ(reads, 1);
}

TEST(SidebarCounts, aChangeDuringAReadIsReadAfterIt)
{
    QSemaphore mayEnd;
    std::atomic_int reads = 0;
    SidebarCounts counts([&] {
        const int read = ++reads;
        mayEnd.acquire();
        return beaches(read);
    });
    QList<TagAndRatingCounts> seen;
    QObject::connect(&counts, &SidebarCounts::changed, &counts,
                     [&seen](const TagAndRatingCounts &values) { seen.append(values); });
    counts.refresh();
    ASSERT_TRUE(waitUntil([&reads] { return reads == 1; }));
    counts.refresh();
    counts.refresh();
    mayEnd.release(2);
    ASSERT_TRUE(waitUntil([&seen] { return seen.size() == 2; }));
    EXPECT_EQ(seen, QList({beaches(1), beaches(2)}));
}

TEST(SidebarCounts, equalOnesAreNotAnnouncedAgain)
{
    std::atomic_int reads = 0;
    SidebarCounts counts([&reads] {
        ++reads;
        return beaches(1);
    });
    QSignalSpy changes(&counts, &SidebarCounts::changed);
    counts.refresh();
    ASSERT_TRUE(waitUntil([&changes] { return changes.count() == 1; }));
    counts.refresh();
    ASSERT_TRUE(waitUntil([&reads] { return reads == 2; }));
    drainMainQueue();
    EXPECT_EQ(changes.count(), 1);
}

TEST(SidebarCounts, leaveTheStoreToOthersWhileChangesGoOn)
{
    constexpr int readMilliseconds = 10;
    constexpr int watchedReads = 4;
    std::atomic_int reads = 0;
    SidebarCounts counts([&reads] {
        // No event to await: how long a read takes is what the pause after it is measured by.
        QThread::msleep(readMilliseconds);
        return beaches(++reads);
    });
    QElapsedTimer timer;
    timer.start();
    ASSERT_TRUE(waitUntil([&] {
        counts.refresh();
        MainQueue::async([] {}); // the next turn
        return reads == watchedReads;
    }));
    // A read and nine times as long a pause before each but the first; a coarse timer may be 5 % early.
    EXPECT_GE(timer.elapsed(), (watchedReads - 1) * 9 * readMilliseconds);
}

TEST(SidebarCounts, aReadThatOutlivesThemIsDropped)
{
    // What the read uses may outlive this test too.
    const auto mayEnd = std::make_shared<QSemaphore>();
    const auto reads = std::make_shared<std::atomic_int>(0);
    {
        SidebarCounts counts([mayEnd, reads] {
            ++*reads;
            mayEnd->acquire();
            return beaches(1);
        });
        counts.refresh();
        ASSERT_TRUE(waitUntil([&reads] { return *reads == 1; }));
    }
    mayEnd->release();
    // The read alone still holds them.
    ASSERT_TRUE(waitUntil([&mayEnd] { return mayEnd.use_count() == 1; }));
    drainMainQueue();
}

TEST(SidebarCounts, comeFromTheStore)
{
    EmbeddingStore &store = EmbeddingStore::shared();
    for (const char *path : {"/p/a.jpg", "/p/b.jpg"})
        store.addTag(QLatin1String(path), QStringLiteral("Beach"));
    store.setRating(QStringLiteral("/p/a.jpg"), 4);
    const TagAndRatingCounts counts = SidebarCounts::readStore();
    EXPECT_EQ(counts.tags.value(QStringLiteral("Beach")), 2);
    EXPECT_EQ(counts.ratings.value(4), 1);
    store.deletePaths({QStringLiteral("/p/a.jpg"), QStringLiteral("/p/b.jpg")});
}
