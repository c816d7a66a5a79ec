#include "views/grid/MediaActions.h"

#include "platform/Workspace.h"

namespace Qorvane {

void MediaActions::openInFinder(const QString &path) const
{
    Workspace::showInFileManager({FileUrl::file(path)});
}

} // namespace Qorvane
