#include "platform/FixedDecimal.h"

#include <array>
#include <charconv>

namespace Qorvane {

QString fixedDecimal(double value, int decimals)
{
    // The longest finite double has 309 digits before the point, beside a sign, the point and the decimals.
    std::array<char, 400> text;
    const auto [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    if (error != std::errc())
        return {};
    return QString::fromLatin1(text.data(), end - text.data());
}

} // namespace Qorvane
