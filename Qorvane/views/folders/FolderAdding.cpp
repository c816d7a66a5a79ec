#include "views/folders/FolderAdding.h"

#include "library/QorManage.h"
#include "platform/FileAttributes.h"
#include "platform/GlobalQueue.h"
#include "platform/Localization.h"
#include "platform/MainQueue.h"

#include <QGuiApplication>
#include <QPointer>
#include <QWindow>

#include <algorithm>

namespace Qorvane {

FolderAdding::FolderAdding(QorManage &qorManager, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
{
    connect(&m_panel, &FolderPanel::chosen, this, &FolderAdding::add);
    connect(&m_panel, &FolderPanel::unavailable, this, &FolderAdding::panelUnavailable);
}

void FolderAdding::choose()
{
    const QWindow *const window = QGuiApplication::focusWindow();
    m_panel.open(localized("Add Folder"),
                 window ? FolderPanel::handleOf(QGuiApplication::platformName(), window->winId())
                        : QString());
}

bool FolderAdding::mayHold(const QList<QUrl> &urls) const
{
    return std::any_of(urls.begin(), urls.end(), [](const QUrl &url) { return url.isLocalFile(); });
}

void FolderAdding::add(const QList<QUrl> &urls)
{
    // Off the GUI thread: a folder may lie on a server that doesn't answer.
    // For the library, not for this: the window may be closed meanwhile.
    GlobalQueue::async(QualityOfService::userInitiated, [library = QPointer(&m_qorManager), urls] {
        QList<FileUrl> folders;
        for (const QUrl &url : urls) {
            if (url.isLocalFile() && directoryExists(url.toLocalFile()))
                folders.append(FileUrl::directory(url.toLocalFile()));
        }
        MainQueue::async([library, folders] {
            if (!library)
                return;
            for (const FileUrl &folder : folders)
                library->addFolder(folder);
        });
    });
}

} // namespace Qorvane
