#include "platform/desktop/InterfaceFont.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>

namespace Qorvane::InterfaceFont {

namespace {

// What toolkit and desktops write when they mean no family in particular.
const QStringList genericNames{QStringLiteral("sans"), QStringLiteral("sans serif"),
                               QStringLiteral("sans-serif")};
// What systems without further settings make of that.
const QString lastResort = QStringLiteral("DejaVu Sans");
// The best first.
const QStringList betterFamilies{QStringLiteral("Inter"), QStringLiteral("Noto Sans")};

} // namespace

std::optional<QString> betterFamily(const QString &named, const QString &resolved,
                                    const QStringList &installed)
{
    if (!genericNames.contains(named.toLower()) || resolved != lastResort)
        return std::nullopt;
    for (const QString &family : betterFamilies) {
        if (installed.contains(family))
            return family;
    }
    return std::nullopt;
}

void install()
{
    QFont font = QGuiApplication::font();
    const std::optional<QString> family =
        betterFamily(font.family(), QFontInfo(font).family(), QFontDatabase::families());
    if (!family)
        return;
    font.setFamily(*family);
    QGuiApplication::setFont(font);
}

} // namespace Qorvane::InterfaceFont
