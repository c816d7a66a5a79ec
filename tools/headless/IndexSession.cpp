#include "headless/IndexSession.h"

#include "library/QorManage.h"

#include <algorithm>

namespace Qorvane {

IndexSession::IndexSession(QorManage &library, QObject *parent)
    : QObject(parent)
    , m_library(library)
{
    connect(&library, &QorManage::folderProcessingStatusChanged, this, &IndexSession::follow);
    // Not with every change of state: a new stage is published before its progress begins anew.
    connect(&library, &QorManage::folderProcessingProgressChanged, this, &IndexSession::progressChanged);
}

void IndexSession::start(const QList<FileUrl> &folders)
{
    m_folders = folders;
    m_completed.clear();
    m_isFinished = false;
    for (const FileUrl &folder : folders) {
        if (isRoot(folder))
            startRun(folder);
        else
            m_library.addFolder(folder);
    }
}

void IndexSession::startRun(const FileUrl &folder)
{
    const QList<FileUrl> files = QorManage::collectMediaFiles(folder);
    if (files.isEmpty())
        m_library.setProcessing(folder.path(), FolderProcessingState::completed, 1.0, QString());
    else
        m_library.startProcessing(files, folder.path());
}

bool IndexSession::isRoot(const FileUrl &folder) const
{
    const QList<Folder> &roots = m_library.libraryFolders();
    return std::any_of(roots.begin(), roots.end(),
                       [&folder](const Folder &root) { return root.url == folder; });
}

void IndexSession::follow()
{
    const auto &states = m_library.folderProcessingStatus();
    for (const FileUrl &folder : m_folders) {
        if (states.value(folder.path(), FolderProcessingState::idle) == FolderProcessingState::completed)
            m_completed.insert(folder.path());
    }
    if (!m_isFinished && m_completed.size() == m_folders.size()) {
        m_isFinished = true;
        Q_EMIT progressChanged();
        Q_EMIT finished();
    }
}

double IndexSession::fractionOf(const FileUrl &folder) const
{
    if (m_completed.contains(folder.path()))
        return 1.0;
    const double stage = m_library.folderProcessingProgress().value(folder.path(), 0.0);
    switch (m_library.folderProcessingStatus().value(folder.path(), FolderProcessingState::idle)) {
    case FolderProcessingState::idle:
        return 0.0;
    case FolderProcessingState::thumbnails:
        return stage / 2;
    case FolderProcessingState::vectors:
        return 0.5 + stage / 2;
    case FolderProcessingState::completed:
        return 1.0;
    }
    Q_UNREACHABLE();
}

double IndexSession::fraction() const
{
    if (m_folders.isEmpty())
        return 1.0;
    double sum = 0;
    for (const FileUrl &folder : m_folders)
        sum += fractionOf(folder);
    return sum / double(m_folders.size());
}

FolderProcessingState IndexSession::state() const
{
    for (const FileUrl &folder : m_folders) {
        if (!m_completed.contains(folder.path()))
            return m_library.folderProcessingStatus().value(folder.path(), FolderProcessingState::idle);
    }
    return FolderProcessingState::completed;
}

} // namespace Qorvane
