#pragma once

#include <QStringList>

namespace Qorvane {

/// The built-in vocabulary of tags: what is suggested while a tag is typed, and recommended for a photo. The
/// order is part of it: suggestions come in it. Both lists hold repeats, and their entries aren't paired with
/// one another's. Any thread.
const QStringList &predefinedTagsEnglish();
const QStringList &predefinedTagsChinese();

/// The one in the user's language, looked at anew with every call.
const QStringList &predefinedTags();

/// Lets `predefinedTags()` give `tags`, which must stay as long, or again its own with null. Gives what was
/// put in their place before. Any thread.
const QStringList *overridePredefinedTagsForTests(const QStringList *tags);

} // namespace Qorvane
