#include "platform/WhiteSpace.h"

#include <algorithm>
#include <iterator>

namespace Qorvane {

bool isWhiteSpace(QChar unit)
{
    constexpr char16_t zeroWidthSpace = 0x200B;
    return unit.isSpace() || unit == zeroWidthSpace;
}

QString trimmedWhiteSpace(const QString &text)
{
    const auto first = std::find_if_not(text.begin(), text.end(), isWhiteSpace);
    const auto end = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isWhiteSpace).base();
    return text.sliced(first - text.begin(), end - first);
}

} // namespace Qorvane
