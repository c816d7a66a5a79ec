#include "platform/WorkerPools.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Qorvane {

WorkerPools::WorkerPools(int maximumThreads)
{
    for (QThreadPool &pool : m_pools)
        pool.setMaxThreadCount(maximumThreads);
}

void WorkerPools::start(QualityOfService quality, std::function<void()> block)
{
    QThreadPool &pool = m_pools[static_cast<std::size_t>(quality)];
    withFullWeight([&pool, quality, &block] {
        pool.start([quality, block = std::move(block)] {
            thread_local bool isWeighted = false;
            if (!std::exchange(isWeighted, true))
                applyToCurrentThread(quality);
            block();
        });
    });
}

bool WorkerPools::isIdle() const
{
    // What is queued has a thread at work before it.
    return std::ranges::all_of(m_pools,
                               [](const QThreadPool &pool) { return pool.activeThreadCount() == 0; });
}

void WorkerPools::waitUntilIdle()
{
    for (QThreadPool &pool : m_pools)
        pool.waitForDone();
}

} // namespace Qorvane
