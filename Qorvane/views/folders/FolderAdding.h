#pragma once

#include "platform/desktop/FolderPanel.h"

#include <QList>
#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

class QorManage;

/// The ways for folders into the library: the desktop's panel, and whatever else comes with addresses. GUI
/// thread.
class FolderAdding : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")

public:
    /// `qorManager` outlives this object.
    explicit FolderAdding(QorManage &qorManager, QObject *parent = nullptr);

    /// Opens the desktop's panel for folders to add.
    Q_INVOKABLE void choose();
    /// Adds the folders among `urls` to the library, in their order; other files, and what isn't on this
    /// machine, are passed over. A moment later, and even if this object is gone by then.
    Q_INVOKABLE void add(const QList<QUrl> &urls);
    /// Whether `add` might find folders among `urls`. By the addresses alone, for a drag can't wait for a
    /// disk.
    Q_INVOKABLE bool mayHold(const QList<QUrl> &urls) const;

Q_SIGNALS:
    /// The desktop has no panel for folders; the window has to show its own.
    void panelUnavailable();

private:
    QorManage &m_qorManager;
    FolderPanel m_panel{this};
};

} // namespace Qorvane
