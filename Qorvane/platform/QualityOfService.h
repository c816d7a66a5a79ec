#pragma once

namespace Qorvane {

/// How urgent a piece of work is. Lower means that the scheduler lets everything else go first.
enum class QualityOfService { userInitiated, utility, background };

/// Gives the calling thread the scheduling weight of `quality`. Background threads run at the lowest
/// niceness, so that a full indexing run is not felt in the window.
void applyToCurrentThread(QualityOfService quality);

} // namespace Qorvane
