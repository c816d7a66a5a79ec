#pragma once

#include <chrono>
#include <functional>

namespace Qorvane {

/// Runs the event loop until `condition` holds, looking again after each event; true if it came to hold in
/// time. A condition that other threads bring about is noticed through the events they post.
bool waitUntil(const std::function<bool()> &condition,
               std::chrono::milliseconds timeout = std::chrono::seconds(20));

/// Runs every event queued so far, and those that they queue.
void drainMainQueue();

} // namespace Qorvane
