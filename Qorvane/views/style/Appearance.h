#pragma once

#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

/// The desktop's wishes as the Theme binds to them. GUI thread.
class Appearance : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    Q_PROPERTY(bool hasAccentColor READ hasAccentColor NOTIFY changed)
    Q_PROPERTY(QColor accentColor READ accentColor NOTIFY changed)
    Q_PROPERTY(bool reducesMotion READ reducesMotion NOTIFY changed)

public:
    explicit Appearance(QObject *parent = nullptr);

    bool isDark() const;
    bool hasAccentColor() const;
    /// Meaningful only when hasAccentColor().
    QColor accentColor() const;
    bool reducesMotion() const;

    /// `accent`, darkened where words on it couldn't be read otherwise.
    Q_INVOKABLE QColor fillFor(const QColor &accent) const;
    /// The colour of words on a `fill` that comes from `fillFor`.
    Q_INVOKABLE QColor inkOn(const QColor &fill) const;

Q_SIGNALS:
    void changed();
};

} // namespace Qorvane
