#include "AsOrdinaryUser.h"
#include "platform/DetachedTask.h"
#include "platform/GlobalQueue.h"
#include "platform/QualityOfService.h"
#include "platform/SerialQueue.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include <algorithm>
#include <semaphore>

using namespace Qorvane;

namespace {

int currentNiceness()
{
    return getpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)));
}

// Runs a measurement wherever `start` puts it, and waits.
template <typename Start>
int nicenessIn(const Start &start)
{
    int niceness = -1;
    std::binary_semaphore done(0);
    start([&] {
        niceness = currentNiceness();
        done.release();
    });
    done.acquire();
    return niceness;
}

int nicenessOfDetachedTask(QualityOfService quality)
{
    return nicenessIn([quality](const std::function<void()> &measure) {
        DetachedTask::start(quality, [measure](const TaskHandle &) { measure(); });
    });
}

int nicenessOfGlobalQueue(QualityOfService quality)
{
    return nicenessIn(
        [quality](const std::function<void()> &measure) { GlobalQueue::async(quality, measure); });
}

// Without the administrator's rights: with them a weak thread could be made strong again.
class WorkerWeightTest : public testing::Test
{
protected:
    WorkerWeightTest()
    {
        EXPECT_TRUE(m_user.worked());
        // No thread of an earlier test, which might have the right weight by chance.
        DetachedTask::waitUntilIdle();
        GlobalQueue::waitUntilIdle();
    }

    const AsOrdinaryUser m_user{{}};
    const int m_own = currentNiceness();
};

TEST_F(WorkerWeightTest, followsTheQualityOfService)
{
    EXPECT_EQ(nicenessOfDetachedTask(QualityOfService::userInitiated), m_own);
    EXPECT_EQ(nicenessOfDetachedTask(QualityOfService::utility), std::max(5, m_own));
    EXPECT_EQ(nicenessOfDetachedTask(QualityOfService::background), 19);
    EXPECT_EQ(nicenessOfGlobalQueue(QualityOfService::userInitiated), m_own);
    EXPECT_EQ(nicenessOfGlobalQueue(QualityOfService::utility), std::max(5, m_own));
    EXPECT_EQ(nicenessOfGlobalQueue(QualityOfService::background), 19);
}

TEST_F(WorkerWeightTest, anUrgentTaskNeverGetsAThreadThatBackgroundWorkHasWeakened)
{
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(nicenessOfDetachedTask(QualityOfService::background), 19);
        EXPECT_EQ(nicenessOfDetachedTask(QualityOfService::userInitiated), m_own);
        EXPECT_EQ(nicenessOfGlobalQueue(QualityOfService::background), 19);
        EXPECT_EQ(nicenessOfGlobalQueue(QualityOfService::userInitiated), m_own);
    }
}

TEST_F(WorkerWeightTest, whatBackgroundWorkStartsDoesNotInheritItsWeight)
{
    int task = -1;
    int block = -1;
    int queueBlock = -1;
    std::binary_semaphore done(0);
    DetachedTask::start(QualityOfService::background, [&](const TaskHandle &) {
        task = nicenessOfDetachedTask(QualityOfService::userInitiated);
        block = nicenessOfGlobalQueue(QualityOfService::userInitiated);
        SerialQueue queue("com.qorvane.test", QualityOfService::userInitiated);
        queue.sync([&queueBlock] { queueBlock = currentNiceness(); });
        done.release();
    });
    done.acquire();
    EXPECT_EQ(task, m_own);
    EXPECT_EQ(block, m_own);
    EXPECT_EQ(queueBlock, m_own);
}

TEST_F(WorkerWeightTest, theCallersOwnWeightStaysAsItIs)
{
    nicenessOfDetachedTask(QualityOfService::background);
    EXPECT_EQ(currentNiceness(), m_own);
}

} // namespace
