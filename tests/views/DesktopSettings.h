#pragma once

#include "platform/desktop/DesktopAppearance.h"

#include <optional>

namespace Qorvane {

/// The desktop asks for no motion, as long as this lives.
class WithoutMotion
{
public:
    WithoutMotion() { set(false); }
    ~WithoutMotion() { set(true); }
    WithoutMotion(const WithoutMotion &) = delete;
    WithoutMotion &operator=(const WithoutMotion &) = delete;

private:
    static void set(bool hasMotion)
    {
        DesktopAppearance::shared().applySetting(QStringLiteral("org.gnome.desktop.interface"),
                                                 QStringLiteral("enable-animations"), hasMotion);
    }
};

/// Light or dark whatever the desktop says, as long as this lives.
class WithColorScheme
{
public:
    explicit WithColorScheme(ColorScheme scheme) { set(scheme); }
    ~WithColorScheme() { DesktopAppearance::shared().setColorSchemeOverride(std::nullopt); }
    WithColorScheme(const WithColorScheme &) = delete;
    WithColorScheme &operator=(const WithColorScheme &) = delete;

    void set(ColorScheme scheme) { DesktopAppearance::shared().setColorSchemeOverride(scheme); }
};

} // namespace Qorvane
