#pragma once

#include <QString>
#include <QStringList>

namespace Qorvane::Languages {

/// What a locale is wanted for; the desktop may set each on its own (LC_MESSAGES, LC_COLLATE, ...).
enum class Aspect { messages, collation, dates, numbers };

/// The user's languages, most wanted first, as BCP 47 tags ("zh-Hans-CN", "en-US"). Follows the rules of
/// the desktop's own message catalogues: LANGUAGE is a list of wishes, heard only when LC_ALL, LC_MESSAGES
/// or LANG name a real locale; without one, the one language is "en". Never empty. Any thread.
QStringList preferred();

/// The language of the locale in force, without its region: "zh", "en". Any thread.
QString currentLanguageCode();

/// The locale for `aspect`, in the form "zh_CN". Where the environment names none (or C, whose rules are
/// those of a machine and not of a reader: "img10" before "img2"), the result is "en_US". Any thread.
QString localeName(Aspect aspect);

/// Answers `preferred()` and `currentLanguageCode()` from these until `endOverrideForTests()`. Any thread.
void overrideForTests(const QStringList &preferred, const QString &currentLanguageCode);
void endOverrideForTests();

} // namespace Qorvane::Languages
