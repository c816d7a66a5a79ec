#include "views/style/Appearance.h"

#include "platform/desktop/DesktopAppearance.h"
#include "views/style/Contrast.h"

namespace Qorvane {

Appearance::Appearance(QObject *parent)
    : QObject(parent)
{
    connect(&DesktopAppearance::shared(), &DesktopAppearance::changed, this, &Appearance::changed);
}

bool Appearance::isDark() const
{
    return DesktopAppearance::shared().colorScheme() == ColorScheme::dark;
}

bool Appearance::hasAccentColor() const
{
    return DesktopAppearance::shared().accentColor().has_value();
}

QColor Appearance::accentColor() const
{
    return DesktopAppearance::shared().accentColor().value_or(QColor());
}

bool Appearance::reducesMotion() const
{
    return DesktopAppearance::shared().reducesMotion();
}

QColor Appearance::fillFor(const QColor &accent) const
{
    return readableFill(accent);
}

QColor Appearance::inkOn(const QColor &fill) const
{
    return Qorvane::inkOn(fill);
}

} // namespace Qorvane
