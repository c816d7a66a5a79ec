#include "platform/NotificationCenter.h"

#include "platform/MainQueue.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <semaphore>
#include <thread>
#include <vector>

using namespace Qorvane;

namespace {

const QString name = QStringLiteral("ImagesDeleted");

TEST(NotificationCenter, deliversNameAndUserInfoToTheObserversOfThatNameOnly)
{
    NotificationCenter center;
    QList<QVariant> received;
    const auto token = center.addObserver(name, ObserverQueue::posting, [&](const Notification &one) {
        received << one.name << one.userInfo.value(QStringLiteral("paths"));
    });
    center.post(QStringLiteral("imagesDeleted"));
    EXPECT_TRUE(received.isEmpty());

    const QStringList paths{QStringLiteral("/图/a.jpg")};
    center.post(name, {{QStringLiteral("paths"), paths}});
    EXPECT_EQ(received, (QList<QVariant>{name, paths}));
    center.removeObserver(token);
}

TEST(NotificationCenter, callsObserversInTheOrderTheyWereAdded)
{
    NotificationCenter center;
    std::vector<int> order;
    std::vector<NotificationCenter::Token> tokens;
    for (int i = 0; i < 10; ++i)
        tokens.push_back(center.addObserver(name, ObserverQueue::posting,
                                            [&order, i](const Notification &) { order.push_back(i); }));
    center.post(name);
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(NotificationCenter, aPostingObserverRunsOnThePostingThreadBeforePostReturns)
{
    NotificationCenter center;
    std::thread::id where;
    const auto token = center.addObserver(
        name, ObserverQueue::posting, [&where](const Notification &) { where = std::this_thread::get_id(); });
    std::thread posting([&] {
        center.post(name);
        EXPECT_EQ(where, std::this_thread::get_id());
    });
    posting.join();
}

TEST(NotificationCenter, aMainObserverRunsLaterOnTheGuiThread)
{
    NotificationCenter center;
    bool wasOnGuiThread = false;
    bool hasRun = false;
    const auto token = center.addObserver(name, ObserverQueue::main, [&](const Notification &) {
        wasOnGuiThread = MainQueue::isCurrent();
        hasRun = true;
    });
    center.post(name);
    EXPECT_FALSE(hasRun);
    ASSERT_TRUE(waitUntil([&hasRun] { return hasRun; }));
    EXPECT_TRUE(wasOnGuiThread);
}

TEST(NotificationCenter, aRemovedObserverHearsNothingNotEvenWhatIsQueued)
{
    NotificationCenter center;
    int count = 0;
    const auto queued =
        center.addObserver(name, ObserverQueue::main, [&count](const Notification &) { ++count; });
    const auto direct =
        center.addObserver(name, ObserverQueue::posting, [&count](const Notification &) { ++count; });
    center.removeObserver(direct);
    center.post(name);
    center.removeObserver(queued);
    drainMainQueue();
    EXPECT_EQ(count, 0);
}

TEST(NotificationCenter, removingTwiceOrNothingIsHarmless)
{
    NotificationCenter center;
    const auto token = center.addObserver(name, ObserverQueue::posting, [](const Notification &) {});
    center.removeObserver(token);
    center.removeObserver(token);
    center.removeObserver({});
    int count = 0;
    const auto other =
        center.addObserver(name, ObserverQueue::posting, [&count](const Notification &) { ++count; });
    center.post(name);
    EXPECT_EQ(count, 1);
}

TEST(NotificationCenter, aBlockMayRemoveItselfAddAndPost)
{
    NotificationCenter center;
    std::vector<int> order;
    NotificationCenter::Token first;
    NotificationCenter::Token second;
    first = center.addObserver(name, ObserverQueue::posting, [&](const Notification &) {
        order.push_back(1);
        center.removeObserver(first);
        second = center.addObserver(name, ObserverQueue::posting,
                                    [&order](const Notification &) { order.push_back(2); });
        center.post(name);
        order.push_back(3);
    });
    center.post(name);
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(NotificationCenter, aBlockIsEnteredAgainWhenItPostsItsOwnName)
{
    NotificationCenter center;
    int depth = 0;
    const auto token = center.addObserver(name, ObserverQueue::posting, [&](const Notification &) {
        if (++depth < 3)
            center.post(name);
    });
    center.post(name);
    EXPECT_EQ(depth, 3);
}

TEST(NotificationCenter, removalWaitsForABlockThatRunsOnAnotherThread)
{
    NotificationCenter center;
    std::binary_semaphore hasBegun(0);
    std::binary_semaphore mayEnd(0);
    std::atomic_bool hasEnded = false;
    const auto token = center.addObserver(name, ObserverQueue::posting, [&](const Notification &) {
        hasBegun.release();
        mayEnd.acquire();
        hasEnded = true;
    });
    std::thread posting([&center] { center.post(name); });
    hasBegun.acquire();
    std::atomic_bool isRemoved = false;
    std::atomic_bool hadEndedWhenRemoved = false;
    std::thread removing([&] {
        center.removeObserver(token);
        hadEndedWhenRemoved = hasEnded.load();
        isRemoved = true;
    });
    // Long enough for a removal that doesn't wait.
    EXPECT_FALSE(waitUntil([&isRemoved] { return isRemoved.load(); }, std::chrono::milliseconds(50)));
    mayEnd.release();
    removing.join();
    posting.join();
    EXPECT_TRUE(hadEndedWhenRemoved);
}

TEST(NotificationCenter, aBlockIsNeverRunAfterItsRemovalHasReturned)
{
    NotificationCenter center;
    std::atomic_bool isPosting = true;
    std::atomic_int late = 0;
    std::vector<std::thread> posters;
    for (int i = 0; i < 2; ++i) {
        posters.emplace_back([&] {
            while (isPosting)
                center.post(name);
        });
    }
    for (int round = 0; round < 500; ++round) {
        // Set right after the removal: a block that still came would see it.
        auto isGone = std::make_shared<std::atomic_bool>(false);
        const auto token = center.addObserver(name, ObserverQueue::posting,
                                              [&late, isGone](const Notification &) { late += *isGone; });
        center.removeObserver(token);
        *isGone = true;
    }
    isPosting = false;
    for (std::thread &poster : posters)
        poster.join();
    EXPECT_EQ(late, 0);
}

TEST(NotificationCenter, theDefaultCenterIsOne)
{
    EXPECT_EQ(&NotificationCenter::defaultCenter(), &NotificationCenter::defaultCenter());
}

} // namespace
