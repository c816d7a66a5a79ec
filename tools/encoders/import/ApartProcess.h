#pragma once

#include <functional>
#include <optional>

namespace Qorvane::Encoders {

/// Does `work` in a copy of this process, since the inference runtime can be ended by a damaged model: by a
/// division by zero, for instance. Gives what `work` gives, from 0 to 255; nothing when a signal ended it.
/// What it does in memory is lost. To be called while the process has one thread, and before the runtime is
/// used.
std::optional<int> doneApart(const std::function<int()> &work);

} // namespace Qorvane::Encoders
