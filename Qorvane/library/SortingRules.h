#pragma once

#include "library/SortCriterion.h"
#include "platform/FileUrl.h"

#include <QList>

namespace Qorvane::SortingRules {

/// `urls` in ascending order by `criterion`, equal ones in the order they came in; for a descending order the
/// whole of that is reversed, ties included. Names compare as people expect (NaturalOrder); files without a
/// date stay where they are relative to whatever they are compared with; a file without a rating counts 0,
/// and names decide within a rating. Any thread; dates ask the disk once a file, ratings the store.
QList<FileUrl> sortURLs(const QList<FileUrl> &urls, SortCriterion criterion, SortOrder order);

} // namespace Qorvane::SortingRules
