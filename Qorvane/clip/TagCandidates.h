#pragma once

#include "semantic/TagRecommendation.h"

#include <QList>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace Qorvane {

/// The tags that may be recommended for a photo that has `existingTags`: those of `userTags` and of the
/// predefined list of the language, each once, in the order of their code units. Logs the counts. Any thread.
QStringList availableTags(const QStringList &userTags, const QStringList &existingTags);

/// The vector of a tag's text, which changes threads without being copied; null for none.
using SharedTagVector = std::shared_ptr<const std::vector<float>>;
/// A tag and the vector of its text, not null.
using TagAndVector = std::pair<QString, SharedTagVector>;

/// Each of `tags` with its similarity to the photo's vector, in the given order: the cosine, or 0 when the
/// lengths differ. Logs each. Any thread.
QList<TagRecommendation> scoredTags(const std::vector<TagAndVector> &tags, const std::vector<float> &photo);

/// The `limit` best of `tags`, best first, equal ones in the given order. Logs them. There is no threshold:
/// the best is given however poor it is. Any thread.
QList<TagRecommendation> bestTags(const QList<TagRecommendation> &tags, int limit);

} // namespace Qorvane
