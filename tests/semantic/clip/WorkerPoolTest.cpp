#include "clip/WorkerPool.h"

#include "platform/DetachedTask.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <semaphore>

using namespace Qorvane;

namespace {

int currentNiceness()
{
    return getpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)));
}

} // namespace

TEST(WorkerPool, givesItsThreadsTheWeightOfItsQuality)
{
    WorkerPool urgent(QualityOfService::userInitiated, 1);
    WorkerPool patient(QualityOfService::background, 1);
    EXPECT_EQ(urgent.run(currentNiceness).result(), currentNiceness());
    EXPECT_EQ(patient.run(currentNiceness).result(), 19);
}

TEST(WorkerPool, doesNotInheritTheWeightOfTheThreadThatAsks)
{
    WorkerPool urgent(QualityOfService::userInitiated, 1);
    int asking = 0;
    int working = -1;
    std::binary_semaphore done(0);
    DetachedTask::start(QualityOfService::background, [&](const TaskHandle &) {
        asking = currentNiceness();
        working = urgent.run(currentNiceness).result();
        done.release();
    });
    done.acquire();
    EXPECT_EQ(asking, 19);
    EXPECT_EQ(working, currentNiceness());
}
