#include "platform/desktop/DesktopAppearance.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

} // namespace

TEST(DesktopAppearance, takesTheColourSchemeFromThePortal)
{
    DesktopAppearance &desktop = DesktopAppearance::shared();
    QSignalSpy changes(&desktop, &DesktopAppearance::changed);
    desktop.applySetting(appearance, colorScheme, 1u);
    EXPECT_EQ(desktop.colorScheme(), ColorScheme::dark);
    desktop.applySetting(appearance, colorScheme, 2u);
    EXPECT_EQ(desktop.colorScheme(), ColorScheme::light);
    EXPECT_EQ(changes.count(), 2);
}

TEST(DesktopAppearance, fallsBackToThePaletteWithoutAPreference)
{
    DesktopAppearance &desktop = DesktopAppearance::shared();
    desktop.applySetting(appearance, colorScheme, 0u);
    EXPECT_EQ(desktop.colorScheme(), ColorScheme::light); // the offscreen platform's palette
}

TEST(DesktopAppearance, reducesMotionWhereTheDesktopAsksForIt)
{
    DesktopAppearance &desktop = DesktopAppearance::shared();
    desktop.applySetting(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("enable-animations"),
                         false);
    EXPECT_TRUE(desktop.reducesMotion());
    desktop.applySetting(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("enable-animations"),
                         true);
    EXPECT_FALSE(desktop.reducesMotion());
}

TEST(DesktopAppearance, passesOverSettingsOfOthers)
{
    DesktopAppearance &desktop = DesktopAppearance::shared();
    QSignalSpy changes(&desktop, &DesktopAppearance::changed);
    desktop.applySetting(appearance, QStringLiteral("contrast"), 1u);
    desktop.applySetting(QStringLiteral("org.kde.kdeglobals"), colorScheme, 1u);
    EXPECT_EQ(changes.count(), 0);
}

TEST(DesktopAppearance, followsThePortalsSignal)
{
    DesktopAppearance &desktop = DesktopAppearance::shared();
    QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/portal/desktop"),
                                                     QStringLiteral("org.freedesktop.portal.Settings"),
                                                     QStringLiteral("SettingChanged"));
    signal << appearance << colorScheme << QVariant::fromValue(QDBusVariant(1u));
    ASSERT_TRUE(QMetaObject::invokeMethod(&desktop, "onSettingChanged", Q_ARG(QDBusMessage, signal)));
    EXPECT_EQ(desktop.colorScheme(), ColorScheme::dark);
    desktop.applySetting(appearance, colorScheme, 0u);
}
