#pragma once

#include <functional>

namespace Qorvane::NotificationPermission {

/// Called on the GUI thread, later.
using Completion = std::function<void(bool isGranted)>;

/// Asks that the program may show notifications with badge, sound and alert. This desktop has no such gate:
/// the answer is always yes, nobody is asked and nothing is logged. Any thread.
void request(const Completion &completion = {});

} // namespace Qorvane::NotificationPermission
