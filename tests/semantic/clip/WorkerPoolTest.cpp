#include "clip/WorkerPool.h"

#include "platform/DetachedTask.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <memory>
#include <semaphore>
#include <stdexcept>

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

TEST(WorkerPool, mayGoWhileItsWorkHangs)
{
    auto pool = std::make_unique<WorkerPool>(QualityOfService::userInitiated, 1);
    std::binary_semaphore held(0);
    std::binary_semaphore release(0);
    const QFuture<int> running = pool->run([&] {
        held.release();
        release.acquire();
        return 1;
    });
    const QFuture<int> waiting = pool->run([] { return 2; });
    held.acquire();
    pool.reset();
    EXPECT_TRUE(waiting.isFinished());
    EXPECT_EQ(waiting.result(), 0);
    EXPECT_FALSE(running.isFinished());
    release.release();
    EXPECT_EQ(running.result(), 1);
}

TEST(WorkerPool, handsOnWhatItsWorkThrows)
{
    WorkerPool pool(QualityOfService::userInitiated, 1);
    QFuture<int> future = pool.run([]() -> int { throw std::runtime_error("no"); });
    EXPECT_THROW(future.result(), std::runtime_error);
    pool.run([] {}).waitForFinished(); // which goes on working
}
