#pragma once

#include <QtGlobal>

#include <exiv2/exiv2.hpp>
#include <optional>
#include <string>

namespace Qorvane {

/// The first value of a numeric tag such as "Exif.Image.Orientation"; nothing when the tag is missing or
/// empty. Throws what Exiv2 throws.
inline std::optional<qint64> firstNumber(const Exiv2::ExifData &data, const std::string &key)
{
    const auto found = data.findKey(Exiv2::ExifKey(key));
    if (found == data.end() || found->count() == 0)
        return std::nullopt;
#if EXIV2_TEST_VERSION(0, 28, 0)
    return found->toInt64(0);
#else
    return found->toLong(0);
#endif
}

} // namespace Qorvane
