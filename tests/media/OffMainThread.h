#pragma once

#include <future>
#include <utility>

namespace Qorvane {

/// Runs `work` where the program would, off the GUI thread, and waits for its result.
template <typename Work>
auto offMainThread(Work &&work)
{
    return std::async(std::launch::async, std::forward<Work>(work)).get();
}

} // namespace Qorvane
