#pragma once

#include <chrono>
#include <functional>

namespace Qorvane {

/// Runs the event loop until `condition` holds, looking again after each event; true if it came to hold in
/// time. The default leaves background work, which runs at the lowest niceness, its time on a machine that is
/// busy with other things. A condition that other threads bring about is noticed through the events they
/// post.
bool waitUntil(const std::function<bool()> &condition,
               std::chrono::milliseconds timeout = std::chrono::seconds(60));

/// Runs every event queued so far, and those that they queue.
void drainMainQueue();

} // namespace Qorvane
