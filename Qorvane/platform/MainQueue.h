#pragma once

#include <functional>

namespace Qorvane {

/// The queue of the GUI thread: blocks run there one after the other, in the order they were queued.
/// A QCoreApplication must exist; what hasn't run when it goes, and what is queued after that, is dropped.
class MainQueue
{
public:
    using Block = std::function<void()>;

    /// Queues `block` and returns at once, also when called on the GUI thread. Any thread.
    static void async(Block block);

    /// Queues `block` to run `seconds` from now, or at once where that is past; blocks run in the order of
    /// their times. Any thread.
    static void after(double seconds, Block block);

    /// Runs `block` on the GUI thread and waits for it; runs it directly when already there. Any thread.
    static void sync(const Block &block);

    /// Whether the caller is on the GUI thread.
    static bool isCurrent();
};

} // namespace Qorvane
