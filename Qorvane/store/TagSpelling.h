#pragma once

#include <QString>

namespace Qorvane {

/// Whether two tags are one but for case and for whether accents are composed. `EmbeddingStore::replaceTag`
/// then changes nothing. Any thread.
bool differOnlyInSpelling(const QString &left, const QString &right);

} // namespace Qorvane
