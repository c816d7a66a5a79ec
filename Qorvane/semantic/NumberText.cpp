#include "semantic/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Qorvane {

namespace {

// Nearer to zero the leading noughts would hide the digits.
constexpr float smallestPlain = 1e-4f;
// Up to here a float holds every integer; further digits in front of the point would be made up.
constexpr float largestPlain = 0x1p24f;

std::chars_format formatFor(float value)
{
    const float magnitude = std::abs(value);
    const bool isPlain = magnitude == 0 || (magnitude >= smallestPlain && magnitude <= largestPlain);
    return isPlain ? std::chars_format::fixed : std::chars_format::scientific;
}

} // namespace

QString numberText(float value)
{
    // The longest shortest form of a float, "-1.17549435e-38", has 15 characters.
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, formatFor(value));
    const QString text = QString::fromLatin1(buffer.data(), result.ptr - buffer.data());
    const bool isWhole = std::isfinite(value) && !text.contains(u'.') && !text.contains(u'e');
    return isWhole ? text + QStringLiteral(".0") : text;
}

QString numberText(qint32 value)
{
    return QString::number(value);
}

} // namespace Qorvane
