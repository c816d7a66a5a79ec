#pragma once

#include "views/selection/MediaSelection.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

/// The selection as the inspector and the viewer read it. GUI thread.
class SelectedMedia : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(int count READ count NOTIFY changed)
    /// One file of the selection; empty with none selected. Of several it is the first by path, since a set
    /// knows no order.
    Q_PROPERTY(QString path READ path NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(bool isVideo READ isVideo NOTIFY changed)

public:
    /// `selection` outlives this object.
    explicit SelectedMedia(const MediaSelection &selection, QObject *parent = nullptr);

    int count() const { return int(m_selection.urls().size()); }
    QString path() const { return m_url.path(); }
    QString name() const { return m_url.lastPathComponent(); }
    bool isVideo() const;

Q_SIGNALS:
    void changed();

private:
    void takeSelection();

    const MediaSelection &m_selection;
    FileUrl m_url;
};

} // namespace Qorvane
