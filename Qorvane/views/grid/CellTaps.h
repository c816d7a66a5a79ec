#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

/// What a tap on a grid's cell means. Counted by the file that the cell shows: cells stay where they are and
/// come to show other files, between two taps and during one. GUI thread.
class CellTaps : public QObject
{
    Q_OBJECT
    QML_ELEMENT

public:
    enum class Tap {
        None,
        Single,
        Double, ///< after a single one on the same file
    };
    Q_ENUM(Tap)

    using QObject::QObject;

    /// A button or finger goes down over the file; an empty path means beside all cells.
    Q_INVOKABLE void press(const QString &path);
    /// It goes up again over the file, as the toolkit's tap number `tapCount` in a quick succession.
    Q_INVOKABLE Qorvane::CellTaps::Tap tap(const QString &path, int tapCount);

private:
    QString m_pressed;
    QString m_tapped;
    int m_count = 0;
};

} // namespace Qorvane
