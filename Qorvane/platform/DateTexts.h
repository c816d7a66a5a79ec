#pragma once

#include "platform/Languages.h"

#include <QDateTime>
#include <QString>

namespace Qorvane::DateTexts {

/// Date and time of day in ICU's medium styles, in the system's time zone: "May 1, 2024, 3:04:05 PM" in
/// "en_US" (with the narrow no-break blank before PM that newer locale data has), "2024年5月1日 15:04:05" in
/// "zh_CN". Empty for an invalid date. Any thread.
QString mediumDateAndTime(const QDateTime &date,
                          const QString &localeName = Languages::localeName(Languages::Aspect::dates));

} // namespace Qorvane::DateTexts
