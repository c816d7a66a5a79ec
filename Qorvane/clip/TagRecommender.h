#pragma once

#include "clip/TagCandidates.h"
#include "clip/TagVectorCache.h"
#include "clip/WorkerPool.h"
#include "media/Image.h"
#include "platform/FileUrl.h"

#include <QCoroTask>
#include <QList>
#include <QStringList>

#include <optional>
#include <vector>

namespace Qorvane {

class ChineseClipService;

/// Finds the tags whose texts are closest to a photo. GUI thread, which never waits for any of it.
class TagRecommender
{
public:
    /// `service`, which must own this, encodes; `pictures` decode; `workers` do the rest.
    TagRecommender(ChineseClipService &service, WorkerPool &workers, WorkerPool &pictures);

    TagVectorCache &vectors() { return m_vectors; }
    const TagVectorCache &vectors() const { return m_vectors; }

    /// See `ChineseClipService::recommendTags`.
    QCoro::Task<QList<TagRecommendation>> recommend(FileUrl url, QStringList userTags,
                                                    QStringList existingTags, int limit);
    /// See `ChineseClipService::loadImageForAnalysis`.
    QCoro::Task<std::optional<Image>> loadImage(FileUrl url);

private:
    QCoro::Task<std::optional<std::vector<float>>> photoFeatures(FileUrl url);
    QCoro::Task<QList<TagRecommendation>> scoreAll(QStringList tags, std::vector<float> photo);

    ChineseClipService &m_service;
    WorkerPool &m_workers;
    WorkerPool &m_pictures;
    TagVectorCache m_vectors;
};

} // namespace Qorvane
