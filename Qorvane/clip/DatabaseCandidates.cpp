#include "clip/DatabaseCandidates.h"

#include "platform/Log.h"
#include "semantic/VectorScorer.h"
#include "store/EmbeddingStore.h"

namespace Qorvane {

SearchCandidates databaseCandidates(const QList<FileUrl> &scope, const std::vector<float> &textVector)
{
    QStringList paths;
    paths.reserve(scope.size());
    for (const FileUrl &url : scope)
        paths.append(url.path());

    VectorScorer scorer(textVector);
    qint64 rowCount = 0;
    EmbeddingStore::shared().scanVectors(paths, [&scorer, &rowCount](const ImageVectorView &row) {
        ++rowCount;
        scorer.add(row.path, row.blob);
    });
    const QString line = QStringLiteral("🗃️ 从DB取出向量: %1").arg(rowCount);
    Log::line(scope.isEmpty() ? line + QStringLiteral(" (全库)")
                              : line + QStringLiteral("/%1").arg(paths.size()));
    return scorer.finish();
}

} // namespace Qorvane
