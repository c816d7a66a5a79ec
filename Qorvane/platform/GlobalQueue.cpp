#include "platform/GlobalQueue.h"

#include "platform/WorkerPools.h"

#include <QThread>

#include <algorithm>
#include <memory>
#include <utility>

namespace Qorvane {

namespace {

// Blocks wait for the disk and for the store's queue more than they compute, so a pool may hold a few
// more threads than there are cores without fighting over them.
constexpr int minimumThreads = 4;

WorkerPools &pools()
{
    // Never taken down: that would hold up the end of the process until the last block is done.
    static WorkerPools &instance =
        *std::make_unique<WorkerPools>(std::max(minimumThreads, QThread::idealThreadCount())).release();
    return instance;
}

} // namespace

void GlobalQueue::async(QualityOfService quality, Block block)
{
    pools().start(quality, std::move(block));
}

bool GlobalQueue::isIdle()
{
    return pools().isIdle();
}

void GlobalQueue::waitUntilIdle()
{
    pools().waitUntilIdle();
}

} // namespace Qorvane
