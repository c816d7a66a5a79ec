#pragma once

#include "platform/QualityOfService.h"

#include <QThreadPool>

#include <array>
#include <functional>

namespace Qorvane {

/// Pools of threads, one for each quality of service: a thread that was weakened for background work stays
/// weak, so it must never be given a more urgent block.
class WorkerPools
{
public:
    /// Each pool runs at most `maximumThreads` blocks at a time.
    explicit WorkerPools(int maximumThreads);

    /// Queues `block` on the pool of `quality` and returns at once. Any thread.
    void start(QualityOfService quality, std::function<void()> block);

    /// Whether nothing runs and nothing is queued at this moment. Any thread.
    bool isIdle() const;

    /// Waits until every pool is idle. Not from a pool's own block.
    void waitUntilIdle();

private:
    std::array<QThreadPool, 3> m_pools;
};

} // namespace Qorvane
