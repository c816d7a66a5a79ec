#pragma once

#include "platform/QualityOfService.h"

#include <functional>
#include <memory>

namespace Qorvane {

/// A few threads that their owner may leave at any time. It never waits for them: what they are at may be a
/// file on a drive that no longer answers. So what runs owns all that it uses. It doesn't count as work that
/// the process goes on for, and dies with it.
class LeavablePool
{
public:
    using Turn = std::function<void()>;

    /// At most `threadCount` turns run at the same time.
    LeavablePool(QualityOfService quality, int threadCount);
    /// Destroys the turns that haven't begun, on the calling thread.
    ~LeavablePool();
    LeavablePool(const LeavablePool &) = delete;
    LeavablePool &operator=(const LeavablePool &) = delete;

    /// Queues `turn`, first in, first out. Any thread.
    void start(Turn turn);

    /// Whether no pool's turn runs at this moment, nor one of a pool that was left. Any thread.
    static bool isIdle();
    /// Waits until it is so. For an orderly end of tests and tools; not from a turn.
    static void waitUntilIdle();

private:
    class Turns;
    const QualityOfService m_quality;
    const std::shared_ptr<Turns> m_turns;
};

} // namespace Qorvane
