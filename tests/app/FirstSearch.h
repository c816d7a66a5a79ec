#pragma once

#include <QString>

#include <optional>

namespace Qorvane {

/// How long the first search of a process kept its user waiting, in seconds.
struct FirstSearchTimes
{
    double untilLoaded = 0;   ///< from the first key, while the encoders are loaded, to that being done
    double untilAnswered = 0; ///< from the first key to the hits of the whole word
    double processorTime = 0; ///< of all threads, within the latter
};

/// Starts the application on a library of `pictureCount` pictures and the starter pair, types a word into the
/// search field as soon as the window takes keys, and waits for its hits. Once a process: a second search
/// isn't a first one. Nothing, with the reason in `error`, when that goes wrong. A QGuiApplication and a home
/// that may be filled must exist.
std::optional<FirstSearchTimes> measureFirstSearch(int pictureCount, QString *error);

} // namespace Qorvane
