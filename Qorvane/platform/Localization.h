#pragma once

#include <QString>

namespace Qorvane {

/// The interface text behind `key` in the user's language. Keys are the literals themselves, Chinese and
/// English mixed as they stand; one without a translation comes back as it is. From QML the same table is
/// reached with qsTranslate("Qorvane", key). Any thread.
QString localized(const char *key);

/// The text behind `key` with %1 and %2 put in, in that order: `localizedFormat("thumb_progress", 3, 12)`.
/// Any thread.
QString localizedFormat(const char *key, qint64 first, qint64 second);

/// The text behind `key` with %n put in, in the form that the language has for this number. Any thread.
QString localizedCount(const char *key, int count);

namespace Localization {

/// The context of every key in the translation files.
inline constexpr const char *context = "Qorvane";

/// Puts in the translation that fits the user's languages best: simplified Chinese for any Chinese,
/// English for all others, and Qt's own texts in that language. Takes out what an earlier call put in.
/// GUI thread, once the application object exists.
void install();

/// Takes out what install() put in: keys stand for themselves again. GUI thread.
void remove();

} // namespace Localization

} // namespace Qorvane
