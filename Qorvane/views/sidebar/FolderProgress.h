#pragma once

#include "library/FolderProcessingState.h"

#include <QString>

namespace Qorvane {

/// What a folder's row shows of its background run.
struct FolderProgress
{
    FolderProcessingState state = FolderProcessingState::idle;
    double progress = 0; ///< 0 to 1
    QString detail;      ///< the tooltip's text

    friend bool operator==(const FolderProgress &, const FolderProgress &) = default;
};

} // namespace Qorvane
