#include "store/TagSuggestions.h"

#include <QSet>

#include <algorithm>

namespace Qorvane {

QStringList tagsBeginningWith(const QStringList &tags, const QString &lowered)
{
    QStringList found;
    std::copy_if(tags.cbegin(), tags.cend(), std::back_inserter(found),
                 [&lowered](const QString &tag) { return tag.toLower().startsWith(lowered); });
    return found;
}

QStringList interleavedTags(const QStringList &stored, const QStringList &predefined, qsizetype limit)
{
    QStringList suggestions;
    QSet<QString> taken; // in lower case
    const auto take = [&](const QStringList &tags, qsizetype index) {
        if (index >= tags.size() || suggestions.size() >= limit || taken.contains(tags[index].toLower()))
            return;
        taken.insert(tags[index].toLower());
        suggestions.append(tags[index]);
    };
    const qsizetype count = std::max(stored.size(), predefined.size());
    for (qsizetype index = 0; index < count && suggestions.size() < limit; ++index) {
        take(stored, index);
        take(predefined, index);
    }
    return suggestions;
}

} // namespace Qorvane
