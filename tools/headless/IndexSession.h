#pragma once

#include "library/FolderProcessingState.h"
#include "platform/FileUrl.h"

#include <QList>
#include <QObject>
#include <QSet>

namespace Qorvane {

class QorManage;

/// Puts folders into a library and follows their runs to the end. GUI thread.
class IndexSession : public QObject
{
    Q_OBJECT

public:
    /// `library`, which is open by now, must outlive this.
    explicit IndexSession(QorManage &library, QObject *parent = nullptr);

    /// Adds the folders that are no roots yet and starts the runs of the others. `finished` follows when the
    /// last has ended.
    void start(const QList<FileUrl> &folders);

    /// How far the runs have come together: 0 to 1, each folder counting alike and each stage for a half.
    double fraction() const;
    /// What the first unfinished folder is at.
    FolderProcessingState state() const;

Q_SIGNALS:
    void progressChanged();
    void finished();

private:
    void follow();
    void startRun(const FileUrl &folder);
    double fractionOf(const FileUrl &folder) const;
    bool isRoot(const FileUrl &folder) const;

    QorManage &m_library;
    QList<FileUrl> m_folders;
    // A root's run may be started once more by the library's own synchronisation; what was complete stays so.
    QSet<QString> m_completed;
    bool m_isFinished = false;
};

} // namespace Qorvane
