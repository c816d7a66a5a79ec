#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace Qorvane::InterfaceFont {

/// The family to draw the interface with where no desktop names one: the toolkit then asks for whatever is
/// without serifs, and gets a font made for the screens of another time. Nothing where the desktop names a
/// family (`named`), or the user's own settings lead to another one (`resolved`), or none of the better ones
/// is among `installed`.
std::optional<QString> betterFamily(const QString &named, const QString &resolved,
                                    const QStringList &installed);

/// Gives the application that family, if there is one. GUI thread, before the first window.
void install();

} // namespace Qorvane::InterfaceFont
