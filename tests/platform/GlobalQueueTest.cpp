#include "platform/GlobalQueue.h"

#include "platform/MainQueue.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <latch>

using namespace Qorvane;

namespace {

constexpr std::array qualities{QualityOfService::userInitiated, QualityOfService::utility,
                               QualityOfService::background};

TEST(GlobalQueue, runsEveryBlockOnceAndNeverOnTheGuiThread)
{
    std::atomic_int count = 0;
    std::atomic_int onGuiThread = 0;
    for (int i = 0; i < 300; ++i) {
        GlobalQueue::async(qualities[size_t(i % 3)], [&] {
            ++count;
            onGuiThread += MainQueue::isCurrent() ? 1 : 0;
        });
    }
    GlobalQueue::waitUntilIdle();
    EXPECT_EQ(count, 300);
    EXPECT_EQ(onGuiThread, 0);
}

TEST(GlobalQueue, aFewBlocksThatWaitForEachOtherRunAtTheSameTime)
{
    // Four is the least that a pool holds, however small the machine.
    for (const QualityOfService quality : qualities) {
        std::latch everybodyIsHere(4);
        for (int i = 0; i < 4; ++i)
            GlobalQueue::async(quality, [&everybodyIsHere] { everybodyIsHere.arrive_and_wait(); });
        GlobalQueue::waitUntilIdle();
        EXPECT_TRUE(everybodyIsHere.try_wait());
    }
}

TEST(GlobalQueue, aFullPoolOfBackgroundWorkDoesNotHoldUpUrgentBlocks)
{
    std::latch urgentIsDone(1);
    for (int i = 0; i < 100; ++i)
        GlobalQueue::async(QualityOfService::background, [&urgentIsDone] { urgentIsDone.wait(); });
    GlobalQueue::async(QualityOfService::userInitiated, [&urgentIsDone] { urgentIsDone.count_down(); });
    GlobalQueue::waitUntilIdle();
    EXPECT_TRUE(urgentIsDone.try_wait());
}

TEST(GlobalQueue, isIdleWhenNoBlockRunsOrWaits)
{
    GlobalQueue::waitUntilIdle();
    EXPECT_TRUE(GlobalQueue::isIdle());
    std::latch mayEnd(1);
    for (int i = 0; i < 100; ++i)
        GlobalQueue::async(QualityOfService::background, [&mayEnd] { mayEnd.wait(); });
    EXPECT_FALSE(GlobalQueue::isIdle());
    mayEnd.count_down();
    GlobalQueue::waitUntilIdle();
    EXPECT_TRUE(GlobalQueue::isIdle());
}

TEST(GlobalQueue, aBlockMayQueueAnother)
{
    std::atomic_bool hasRun = false;
    std::latch isQueued(1);
    GlobalQueue::async(QualityOfService::background, [&] {
        GlobalQueue::async(QualityOfService::userInitiated, [&hasRun] { hasRun = true; });
        isQueued.count_down();
    });
    isQueued.wait();
    GlobalQueue::waitUntilIdle();
    EXPECT_TRUE(hasRun);
}

} // namespace
