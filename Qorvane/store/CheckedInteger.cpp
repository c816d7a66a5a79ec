#include "store/CheckedInteger.h"

#include <QtGlobal>

#include <limits>

namespace Qorvane {

int floatByteCount(std::size_t count)
{
    constexpr std::size_t mostFloats = std::size_t(std::numeric_limits<int>::max()) / sizeof(float);
    if (count > mostFloats)
        qFatal("A vector of %zu floats doesn't fit a signed 32-bit length", count);
    return int(count * sizeof(float));
}

} // namespace Qorvane
