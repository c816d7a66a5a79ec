#pragma once

#include <QColor>
#include <QDBusMessage>
#include <QObject>
#include <QVariant>

#include <optional>

namespace Qorvane {

enum class ColorScheme { light, dark };

/// How the desktop wants programs to look, followed live: colour scheme, accent colour, reduced motion. It
/// comes from the desktop's settings portal; without one, the scheme is read off the application's palette.
/// GUI thread. One for the process.
class DesktopAppearance : public QObject
{
    Q_OBJECT

public:
    static DesktopAppearance &shared();

    ColorScheme colorScheme() const;
    /// Nothing when the desktop names none.
    std::optional<QColor> accentColor() const { return m_accentColor; }
    bool reducesMotion() const { return m_reducesMotion; }

    /// Puts `scheme` in place of the desktop's; nothing lifts it again.
    void setColorSchemeOverride(std::optional<ColorScheme> scheme);

    /// Takes in one setting as the portal names it: `group` "org.freedesktop.appearance" with "color-scheme"
    /// (1 dark, 2 light), "accent-color" (three doubles, 0 to 1) or "reduced-motion" (1 reduced), or `group`
    /// "org.gnome.desktop.interface" with "enable-animations". Others are passed over.
    void applySetting(const QString &group, const QString &key, const QVariant &value);

Q_SIGNALS:
    void changed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private Q_SLOTS:
    // The whole message: before Qt 6.5 the bus refuses a slot that takes the signal's variant itself.
    void onSettingChanged(const QDBusMessage &signal);

private:
    DesktopAppearance();
    void readPortal();

    std::optional<ColorScheme> m_override;
    std::optional<ColorScheme> m_portalScheme;
    std::optional<QColor> m_accentColor;
    bool m_reducesMotion = false;
};

} // namespace Qorvane
