#include "platform/ByteCountText.h"

#include <QLocale>

#include <unicode/unumberformatter.h>

#include <array>
#include <limits>
#include <memory>

namespace Qorvane {

namespace {

struct Unit
{
    qint64 largest; // in bytes, so that the number still rounds to less than 1,000
    double size;    // in bytes
    const char16_t *skeleton;
};

constexpr std::array units{
    Unit{999, 1, u"measure-unit/digital-byte unit-width-full-name precision-integer"},
    Unit{999'499, 1e3, u"measure-unit/digital-kilobyte unit-width-short precision-integer"},
    Unit{999'949'999, 1e6, u"measure-unit/digital-megabyte unit-width-short .#"},
    Unit{std::numeric_limits<qint64>::max(), 1e9, u"measure-unit/digital-gigabyte unit-width-short .##"},
};

const Unit &unitFor(qint64 bytes)
{
    // Nothing is "Zero KB", as a folder listing has it, and not so many bytes.
    if (bytes == 0)
        return units[1];
    const auto *unit = units.begin();
    while (bytes > unit->largest)
        ++unit;
    return *unit;
}

QString formatted(double number, const char16_t *skeleton, const QString &localeName)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UNumberFormatter, decltype(&unumf_close)> format(
        unumf_openForSkeletonAndLocale(skeleton, -1, localeName.toUtf8().constData(), &status), &unumf_close);
    const std::unique_ptr<UFormattedNumber, decltype(&unumf_closeResult)> result(unumf_openResult(&status),
                                                                                 &unumf_closeResult);
    unumf_formatDouble(format.get(), number, result.get(), &status);
    // Far more than the longest number with the longest unit.
    std::array<UChar, 128> text;
    const qint32 length =
        unumf_resultToString(result.get(), text.data(), static_cast<qint32>(text.size()), &status);
    return U_SUCCESS(status) ? QString(reinterpret_cast<const QChar *>(text.data()), length) : QString();
}

} // namespace

QString byteCountText(qint64 bytes, const QString &localeName)
{
    const Unit &unit = unitFor(bytes);
    QString text = formatted(double(bytes) / unit.size, unit.skeleton, localeName);
    // The locale data writes the unit as physics does; file sizes are commonly told with a capital.
    text.replace(QStringLiteral("kB"), QStringLiteral("KB"));
    if (bytes == 0 && QLocale(localeName).language() == QLocale::English)
        text.replace(u'0', QStringLiteral("Zero"));
    if (bytes == 0 && QLocale(localeName).language() == QLocale::Chinese)
        text.replace(QStringLiteral("0 "), QStringLiteral("零"));
    return text;
}

} // namespace Qorvane
