#pragma once

namespace Qorvane {

/// Waits until nothing is at work in the background any more, and has what that leads to on this thread done:
/// whoever waits for a result goes on. The programs end without it. GUI thread.
void finishAllWork();

} // namespace Qorvane
