#pragma once

#include "platform/FileUrl.h"

#include <QList>
#include <QObject>

#include <functional>

namespace Qorvane {

class QorManage;

/// Calls `isOpen` on the GUI thread once `library`, made just now, has published the folders of earlier runs:
/// whatever is added before that would be lost when they replace the list. Not called when `context` is gone
/// by then. GUI thread.
void whenLibraryIsOpen(QorManage &library, QObject *context, std::function<void()> isOpen);

/// The roots of the library as they are stored, those that can't be reached left out. Asks the disk.
QList<FileUrl> storedLibraryFolders();

} // namespace Qorvane
