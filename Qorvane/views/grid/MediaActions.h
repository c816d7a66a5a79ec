#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

/// What the context menu of a cell does. GUI thread.
class MediaActions : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")

public:
    using QObject::QObject;

    /// Shows the file at `path` in the desktop's file manager: this one alone, whatever is selected.
    Q_INVOKABLE void openInFinder(const QString &path) const;
};

} // namespace Qorvane
