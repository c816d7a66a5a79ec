#include "platform/DetachedTask.h"

#include "platform/MainQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <latch>
#include <semaphore>

using namespace Qorvane;

namespace {

TEST(DetachedTask, runsOnAThreadOfItsOwn)
{
    std::atomic_bool wasOnGuiThread = true;
    DetachedTask::start(QualityOfService::background,
                        [&](const TaskHandle &) { wasOnGuiThread = MainQueue::isCurrent(); });
    DetachedTask::waitUntilIdle();
    EXPECT_FALSE(wasOnGuiThread);
}

TEST(DetachedTask, aTaskThatWaitsKeepsNoOtherFromStarting)
{
    // More than any machine has cores: all have to be running for any to go on.
    constexpr int count = 200;
    std::latch everybodyIsHere(count);
    std::atomic_int ended = 0;
    for (int i = 0; i < count; ++i) {
        DetachedTask::start(QualityOfService::background, [&](const TaskHandle &) {
            everybodyIsHere.arrive_and_wait();
            ++ended;
        });
    }
    DetachedTask::waitUntilIdle();
    EXPECT_EQ(ended, count);
}

TEST(DetachedTask, isIdleWhenNoTaskRuns)
{
    DetachedTask::waitUntilIdle();
    EXPECT_TRUE(DetachedTask::isIdle());
    std::binary_semaphore mayEnd(0);
    DetachedTask::start(QualityOfService::background, [&mayEnd](const TaskHandle &) { mayEnd.acquire(); });
    EXPECT_FALSE(DetachedTask::isIdle());
    mayEnd.release();
    DetachedTask::waitUntilIdle();
    EXPECT_TRUE(DetachedTask::isIdle());
}

TEST(DetachedTask, aCancelIsSeenByTheTaskAndByEveryCopyOfTheHandle)
{
    std::binary_semaphore isCancelled(0);
    bool before = true;
    bool after = false;
    std::binary_semaphore hasBegun(0);
    const TaskHandle handle = DetachedTask::start(QualityOfService::utility, [&](const TaskHandle &task) {
        before = task.isCancelled();
        hasBegun.release();
        isCancelled.acquire();
        after = task.isCancelled();
    });
    hasBegun.acquire();
    const TaskHandle copy = handle;
    copy.cancel();
    isCancelled.release();
    DetachedTask::waitUntilIdle();
    EXPECT_FALSE(before);
    EXPECT_TRUE(after);
    EXPECT_TRUE(handle.isCancelled());
}

TEST(DetachedTask, handlesCompareByTheTaskTheyStandFor)
{
    const auto nothing = [](const TaskHandle &) {};
    const TaskHandle first = DetachedTask::start(QualityOfService::utility, nothing);
    const TaskHandle second = DetachedTask::start(QualityOfService::utility, nothing);
    EXPECT_EQ(first, TaskHandle(first));
    EXPECT_NE(first, second);
    DetachedTask::waitUntilIdle();
}

TEST(DetachedTask, theHandleGivenToTheTaskIsTheOneReturned)
{
    TaskHandle inside;
    const TaskHandle outside =
        DetachedTask::start(QualityOfService::utility, [&](const TaskHandle &task) { inside = task; });
    DetachedTask::waitUntilIdle();
    EXPECT_EQ(inside, outside);
}

TEST(DetachedTask, lettingGoOfTheHandleDoesNotEndTheTask)
{
    std::atomic_bool wasCancelled = true;
    {
        DetachedTask::start(QualityOfService::utility,
                            [&](const TaskHandle &task) { wasCancelled = task.isCancelled(); });
    }
    DetachedTask::waitUntilIdle();
    EXPECT_FALSE(wasCancelled);
}

TEST(DetachedTaskDeathTest, aRunningTaskDoesNotHoldUpTheEndOfTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::binary_semaphore never(0);
            std::binary_semaphore hasBegun(0);
            DetachedTask::start(QualityOfService::background, [&](const TaskHandle &) {
                hasBegun.release();
                never.acquire();
            });
            hasBegun.acquire();
            std::exit(3);
        },
        testing::ExitedWithCode(3), "");
}

} // namespace
