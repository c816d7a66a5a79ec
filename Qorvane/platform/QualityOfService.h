#pragma once

#include <functional>

namespace Qorvane {

/// How urgent a piece of work is. Lower means that the scheduler lets everything else go first.
enum class QualityOfService { userInitiated, utility, background };

/// Gives the calling thread the scheduling weight of `quality`. Background threads run at the lowest
/// niceness, so that a full indexing run is not felt in the window. There is no way back up: without
/// privileges a thread only gets weaker, so one thread serves one quality for its whole life.
void applyToCurrentThread(QualityOfService quality);

/// What the calling thread was given; `userInitiated` when it was given nothing.
QualityOfService qualityOfCurrentThread();

/// Runs `block`, which starts threads, on a thread of full weight, and waits for it. A new thread inherits
/// the weight of the one that starts it, and could not shed it: whoever starts threads does it in here. Any
/// thread.
void withFullWeight(const std::function<void()> &block);

} // namespace Qorvane
