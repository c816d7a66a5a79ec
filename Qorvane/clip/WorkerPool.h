#pragma once

#include "platform/QualityOfService.h"

#include <QFuture>
#include <QThreadPool>
#include <QtConcurrent>

#include <atomic>

namespace Qorvane {

/// Threads for work that the GUI thread only waits for. First in, first out.
class WorkerPool
{
public:
    WorkerPool(QualityOfService quality, int threadCount)
        : m_quality(quality)
    {
        m_pool.setMaxThreadCount(threadCount);
    }

    /// Waits for the work that has begun. What hasn't is not done any more and gives an empty result, so that
    /// whoever waits for it goes on.
    ~WorkerPool()
    {
        m_isEnding = true;
        m_pool.waitForDone();
    }
    WorkerPool(const WorkerPool &) = delete;
    WorkerPool &operator=(const WorkerPool &) = delete;

    /// Runs `work`, whose result type must be default-constructible or void. Any thread.
    template <typename Work>
    auto run(Work work) -> QFuture<std::invoke_result_t<Work>>
    {
        using Result = std::invoke_result_t<Work>;
        QFuture<Result> future;
        withFullWeight([&] {
            future = QtConcurrent::run(&m_pool, [this, work = std::move(work)]() -> Result {
                if (m_isEnding)
                    return Result();
                applyToCurrentThread(m_quality);
                return work();
            });
        });
        return future;
    }

private:
    const QualityOfService m_quality;
    std::atomic_bool m_isEnding = false;
    QThreadPool m_pool;
};

} // namespace Qorvane
