#pragma once

#include "clip/WorkerPool.h"

#include <QCoroTask>
#include <QFuture>
#include <QString>
#include <QStringList>

namespace Qorvane {

class ChineseClipService;
class TagVectorCache;

/// Has the vectors of all predefined tags in memory before a recommendation asks for them: from the store,
/// and what is missing there from the encoder. GUI thread, which never waits for any of it.
class PredefinedTagVectors
{
public:
    /// `service`, which must own this and `cache`, encodes.
    PredefinedTagVectors(ChineseClipService &service, TagVectorCache &cache);

    /// Whether a pass was made to its end.
    bool isComplete() const { return m_isComplete; }

    /// See `ChineseClipService::precomputePredefinedTags`.
    QCoro::Task<> precompute();

private:
    struct Writing
    {
        QString tag;
        QFuture<bool> end; // true, whatever came of it
    };

    QCoro::Task<int> computeMissing(QStringList tags);
    QFuture<bool> write(const QString &tag, const std::vector<float> &vector);

    ChineseClipService &m_service;
    TagVectorCache &m_cache;
    bool m_isComplete = false;

    // A thread of its own that encodes, and a weaker one: what the user asks for meanwhile finds the others
    // free.
    WorkerPool m_workers;
};

} // namespace Qorvane
