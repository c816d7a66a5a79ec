#include "library/FolderProcessingState.h"

namespace Qorvane {

QString caseName(FolderProcessingState state)
{
    switch (state) {
    case FolderProcessingState::idle:
        return QStringLiteral("idle");
    case FolderProcessingState::thumbnails:
        return QStringLiteral("thumbnails");
    case FolderProcessingState::vectors:
        return QStringLiteral("vectors");
    case FolderProcessingState::completed:
        return QStringLiteral("completed");
    }
    return {};
}

} // namespace Qorvane
