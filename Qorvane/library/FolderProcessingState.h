#pragma once

#include <QMetaType>
#include <QString>

namespace Qorvane {

/// How far the background run for a folder has come.
enum class FolderProcessingState {
    idle,       ///< nothing running; also what a cancelled run ends in
    thumbnails, ///< thumbnail stage
    vectors,    ///< embedding stage
    completed,  ///< the run ended normally
};

/// The case's own name, as the log shows it.
QString caseName(FolderProcessingState state);

} // namespace Qorvane

Q_DECLARE_METATYPE(Qorvane::FolderProcessingState)
