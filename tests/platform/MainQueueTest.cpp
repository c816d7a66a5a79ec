#include "platform/MainQueue.h"

#include "support/Waiting.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qorvane;

namespace {

std::vector<int> upTo(int count)
{
    std::vector<int> numbers;
    for (int i = 0; i < count; ++i)
        numbers.push_back(i);
    return numbers;
}

TEST(MainQueue, asyncReturnsBeforeTheBlockRunsAlsoOnTheGuiThread)
{
    bool hasRun = false;
    MainQueue::async([&hasRun] { hasRun = true; });
    EXPECT_FALSE(hasRun);
    ASSERT_TRUE(waitUntil([&hasRun] { return hasRun; }));
}

TEST(MainQueue, runsBlocksOnTheGuiThreadInTheOrderTheyWereQueued)
{
    std::vector<int> order;
    bool isAlwaysGuiThread = true;
    std::thread queuing([&] {
        EXPECT_FALSE(MainQueue::isCurrent());
        for (int i = 0; i < 1000; ++i) {
            MainQueue::async([&, i] {
                order.push_back(i);
                isAlwaysGuiThread &= MainQueue::isCurrent();
            });
        }
    });
    queuing.join();
    ASSERT_TRUE(waitUntil([&order] { return order.size() == 1000; }));
    EXPECT_EQ(order, upTo(1000));
    EXPECT_TRUE(isAlwaysGuiThread);
    EXPECT_TRUE(MainQueue::isCurrent());
}

TEST(MainQueue, aBlockMayQueueAnother)
{
    std::vector<int> order;
    MainQueue::async([&order] {
        MainQueue::async([&order] { order.push_back(1); });
        order.push_back(0);
    });
    ASSERT_TRUE(waitUntil([&order] { return order.size() == 2; }));
    EXPECT_EQ(order, upTo(2));
}

TEST(MainQueue, afterWaitsAtLeastAsLongAsAsked)
{
    QElapsedTimer timer;
    timer.start();
    qint64 passed = -1;
    MainQueue::after(0.05, [&] { passed = timer.nsecsElapsed(); });
    ASSERT_TRUE(waitUntil([&passed] { return passed >= 0; }));
    EXPECT_GE(passed, 50'000'000);
}

TEST(MainQueue, afterCountsFromTheCallAndNotFromItsArrivalOnTheGuiThread)
{
    QElapsedTimer timer;
    timer.start();
    bool hasRun = false;
    MainQueue::after(0.05, [&hasRun] { hasRun = true; });
    // A GUI thread that is busy for the whole of the delay.
    while (timer.elapsed() < 60)
        std::this_thread::yield();
    drainMainQueue();
    EXPECT_TRUE(waitUntil([&hasRun] { return hasRun; }, std::chrono::milliseconds(45)));
}

TEST(MainQueue, delayedBlocksRunInTheOrderOfTheirTimes)
{
    std::vector<int> order;
    MainQueue::after(0.5, [&order] { order.push_back(200); });
    MainQueue::after(0.001, [&order] { order.push_back(-1); });
    // All due within one millisecond, which is all that a timer could tell apart.
    for (int i = 0; i < 200; ++i)
        MainQueue::after(0.02 + i * 1e-6, [&order, i] { order.push_back(i); });
    ASSERT_TRUE(waitUntil([&order] { return order.size() == 202; }));
    std::vector<int> expected{-1};
    for (int i = 0; i <= 200; ++i)
        expected.push_back(i);
    EXPECT_EQ(order, expected);
}

TEST(MainQueue, aDelayThatIsPastRunsAtOnceButStillLater)
{
    int count = 0;
    MainQueue::after(0, [&count] { ++count; });
    MainQueue::after(-1, [&count] { ++count; });
    EXPECT_EQ(count, 0);
    ASSERT_TRUE(waitUntil([&count] { return count == 2; }));
}

TEST(MainQueue, syncWaitsForTheBlock)
{
    std::atomic_bool isDone = false;
    bool wasOnGuiThread = false;
    std::thread calling([&] {
        int value = 0;
        MainQueue::sync([&] {
            wasOnGuiThread = MainQueue::isCurrent();
            value = 7;
        });
        EXPECT_EQ(value, 7);
        isDone = true;
    });
    ASSERT_TRUE(waitUntil([&isDone] { return isDone.load(); }));
    calling.join();
    EXPECT_TRUE(wasOnGuiThread);
}

TEST(MainQueue, syncOnTheGuiThreadRunsTheBlockDirectly)
{
    bool hasRun = false;
    MainQueue::sync([&hasRun] { hasRun = true; });
    EXPECT_TRUE(hasRun);
}

} // namespace
