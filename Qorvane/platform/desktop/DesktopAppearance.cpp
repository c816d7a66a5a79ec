#include "platform/desktop/DesktopAppearance.h"

#include "platform/desktop/SessionBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace Qorvane {

namespace {

using SettingsByGroup = QMap<QString, QVariantMap>;

const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString gnomeInterfaceGroup = QStringLiteral("org.gnome.desktop.interface");
const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");

std::optional<ColorScheme> schemeOf(uint preference)
{
    if (preference == 1)
        return ColorScheme::dark;
    if (preference == 2)
        return ColorScheme::light;
    return std::nullopt;
}

std::optional<QColor> colorOf(const QVariant &value)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return std::nullopt;
    double red = -1;
    double green = -1;
    double blue = -1;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentType() != QDBusArgument::StructureType)
        return std::nullopt;
    argument.beginStructure();
    argument >> red >> green >> blue;
    argument.endStructure();
    // A desktop without an accent colour answers with values outside the range.
    for (const double channel : {red, green, blue}) {
        if (channel < 0 || channel > 1)
            return std::nullopt;
    }
    return QColor::fromRgbF(float(red), float(green), float(blue));
}

ColorScheme schemeOfPalette()
{
    const QPalette palette = QGuiApplication::palette();
    const bool isDark =
        palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
    return isDark ? ColorScheme::dark : ColorScheme::light;
}

} // namespace

DesktopAppearance &DesktopAppearance::shared()
{
    // Owned by the application object, so that it goes before the event loop's ground does.
    static DesktopAppearance *const appearance = new DesktopAppearance;
    return *appearance;
}

DesktopAppearance::DesktopAppearance()
    : QObject(QCoreApplication::instance())
{
    QCoreApplication::instance()->installEventFilter(this);
    readPortal();
}

ColorScheme DesktopAppearance::colorScheme() const
{
    if (m_override)
        return *m_override;
    return m_portalScheme.value_or(schemeOfPalette());
}

void DesktopAppearance::setColorSchemeOverride(std::optional<ColorScheme> scheme)
{
    m_override = scheme;
    Q_EMIT changed();
}

void DesktopAppearance::applySetting(const QString &group, const QString &key, const QVariant &value)
{
    if (group == appearanceGroup && key == QLatin1String("color-scheme"))
        m_portalScheme = schemeOf(value.toUInt());
    else if (group == appearanceGroup && key == QLatin1String("accent-color"))
        m_accentColor = colorOf(value);
    else if (group == appearanceGroup && key == QLatin1String("reduced-motion"))
        m_reducesMotion = value.toUInt() == 1;
    else if (group == gnomeInterfaceGroup && key == QLatin1String("enable-animations"))
        m_reducesMotion = !value.toBool();
    else
        return;
    Q_EMIT changed();
}

bool DesktopAppearance::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange && watched == QCoreApplication::instance())
        Q_EMIT changed();
    return QObject::eventFilter(watched, event);
}

void DesktopAppearance::onSettingChanged(const QDBusMessage &signal)
{
    const QVariantList arguments = signal.arguments();
    if (arguments.size() != 3)
        return;
    applySetting(arguments.at(0).toString(), arguments.at(1).toString(),
                 arguments.at(2).value<QDBusVariant>().variant());
}

void DesktopAppearance::readPortal()
{
    if (!SessionBus::isPresent())
        return;
    qDBusRegisterMetaType<SettingsByGroup>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(portalService, portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(onSettingChanged(QDBusMessage)));

    QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface,
                                                       QStringLiteral("ReadAll"));
    call << QStringList{appearanceGroup, gnomeInterfaceGroup};
    auto *const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<SettingsByGroup> reply = *watcher;
        watcher->deleteLater();
        if (reply.isError())
            return; // no settings portal on this desktop: the palette decides
        const SettingsByGroup groups = reply.value();
        for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
            for (auto setting = group->cbegin(); setting != group->cend(); ++setting)
                applySetting(group.key(), setting.key(), setting.value());
        }
    });
}

} // namespace Qorvane
