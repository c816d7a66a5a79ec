#include "semantic/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Qorvane {

QString numberText(float value)
{
    // The longest shortest form of a float, "-1.17549435e-38", has 15 characters.
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    const QString text = QString::fromLatin1(buffer.data(), result.ptr - buffer.data());
    const bool isWhole = std::isfinite(value) && !text.contains(u'.') && !text.contains(u'e');
    return isWhole ? text + QStringLiteral(".0") : text;
}

QString numberText(qint32 value)
{
    return QString::number(value);
}

} // namespace Qorvane
