#pragma once

#include "platform/QualityOfService.h"

#include <functional>

namespace Qorvane {

/// The shared pools, one per quality of service. Blocks of one pool run at the same time, in no fixed order.
/// What still runs when the process ends dies with it.
class GlobalQueue
{
public:
    using Block = std::function<void()>;

    /// Queues `block` on the pool of `quality` and returns at once. Any thread.
    static void async(QualityOfService quality, Block block);

    /// Whether no block runs or waits at this moment. Any thread.
    static bool isIdle();

    /// Waits until every pool is idle. For an orderly end of tests and tools; not from a pool's own block.
    static void waitUntilIdle();
};

} // namespace Qorvane
