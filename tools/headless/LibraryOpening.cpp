#include "headless/LibraryOpening.h"

#include "library/QorManage.h"
#include "platform/Bookmark.h"
#include "platform/MainQueue.h"
#include "platform/UserDefaults.h"

#include <QPointer>

#include <optional>
#include <utility>

namespace Qorvane {

namespace {

const QString libraryFoldersKey = QStringLiteral("libraryFolders");

std::optional<QList<QByteArray>> storedBookmarks()
{
    return UserDefaults::standard().dataArray(libraryFoldersKey);
}

} // namespace

void whenLibraryIsOpen(QorManage &library, QObject *context, std::function<void()> isOpen)
{
    if (storedBookmarks()) {
        QObject::connect(&library, &QorManage::libraryFoldersChanged, context, std::move(isOpen),
                         static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
        return;
    }
    // A library that was never saved publishes nothing at its start.
    MainQueue::async([guard = QPointer<QObject>(context), isOpen = std::move(isOpen)] {
        if (guard)
            isOpen();
    });
}

QList<FileUrl> storedLibraryFolders()
{
    QList<FileUrl> folders;
    for (const QByteArray &bookmark : storedBookmarks().value_or(QList<QByteArray>())) {
        if (const std::optional<FileUrl> folder = Bookmark::resolve(bookmark))
            folders.append(*folder);
    }
    return folders;
}

} // namespace Qorvane
