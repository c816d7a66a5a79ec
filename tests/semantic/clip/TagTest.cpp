#include "clip/TagTest.h"

#include "platform/PredefinedTags.h"
#include "store/EmbeddingStore.h"

namespace Qorvane {

TagTest::TagTest()
    : service(loadedService())
{
    await(service->extractTextFeatures(QStringLiteral("red")));
    EmbeddingStore::shared().cleanupObsoleteTagVectors({});
    haveRealPredefinedTags();
    log.clear();
}

QList<TagRecommendation> TagTest::recommend(const FileUrl &photo, const QStringList &userTags,
                                            const QStringList &predefined, int limit)
{
    return await(service->recommendTags(photo, userTags, predefinedBut(predefined), limit));
}

QStringList TagTest::predefinedBut(const QStringList &tags)
{
    QStringList others = predefinedTags();
    others.removeDuplicates();
    others.removeIf([&tags](const QString &tag) { return tags.contains(tag); });
    return others;
}

QStringList tagsOf(const QList<TagRecommendation> &recommendations)
{
    QStringList tags;
    for (const TagRecommendation &recommendation : recommendations)
        tags.append(recommendation.tag);
    return tags;
}

} // namespace Qorvane
