#pragma once

#include "encoders/Problem.h"

#include <chrono>
#include <functional>
#include <optional>

namespace Qorvane::Encoders {

/// How work that was done apart came to its end.
struct ApartResult
{
    std::optional<int> code; ///< what it gave; nothing when a signal ended it
    int signal = 0;          ///< that signal

    /// Whether someone wanted it to end, by Ctrl+C for instance.
    bool isInterrupted() const;
};

/// A small model is tried in seconds, the largest in a few minutes.
constexpr std::chrono::seconds longestProcessorTime = std::chrono::minutes(10);

/// For work that takes as long as it takes.
constexpr std::chrono::seconds anyProcessorTime = std::chrono::seconds::max();

/// Does `work` in a copy of this process, since the inference runtime can be ended by a damaged model, by a
/// division by zero for instance, or be kept at work for ever. Gives what `work` gives, from 0 to 255. What
/// it does in memory is lost. Signals that ask this process to end are handed to the copy, so that the caller
/// can clear away what it leaves behind. To be called while the process has one thread, and before the
/// runtime is used.
ApartResult doneApart(const std::function<int()> &work,
                      std::chrono::seconds processorTime = longestProcessorTime);

/// What to say of work with a model that a signal ended.
Problem apartProblem(const ApartResult &result);

} // namespace Qorvane::Encoders
