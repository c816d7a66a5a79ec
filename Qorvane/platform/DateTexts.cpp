#include "platform/DateTexts.h"

#include <QTimeZone>

#include <unicode/udat.h>

#include <array>
#include <memory>
#include <string>

namespace Qorvane::DateTexts {

QString mediumDateAndTime(const QDateTime &date, const QString &localeName)
{
    if (!date.isValid())
        return {};
    // Asked anew each time: ICU's own default would be that of the program's start.
    const QString zone = QString::fromLatin1(QTimeZone::systemTimeZoneId());
    const std::u16string zoneName = zone.toStdU16String();
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UDateFormat, decltype(&udat_close)> format(
        udat_open(UDAT_MEDIUM, UDAT_MEDIUM, localeName.toUtf8().constData(),
                  zoneName.empty() ? nullptr : zoneName.data(), static_cast<qint32>(zoneName.size()), nullptr,
                  0, &status),
        &udat_close);
    // Far more than the longest of the medium styles.
    std::array<UChar, 256> text;
    const qint32 length = udat_format(format.get(), static_cast<UDate>(date.toMSecsSinceEpoch()), text.data(),
                                      static_cast<qint32>(text.size()), nullptr, &status);
    return U_SUCCESS(status) ? QString(reinterpret_cast<const QChar *>(text.data()), length) : QString();
}

} // namespace Qorvane::DateTexts
