#pragma once

#include "clip/PredefinedTagVectors.h"
#include "clip/TagRecommender.h"
#include "clip/WorkerPool.h"
#include "media/Image.h"
#include "platform/FileUrl.h"
#include "semantic/EncoderLoading.h"
#include "semantic/FeatureExtraction.h"
#include "semantic/ImageFeature.h"
#include "semantic/SearchRanking.h"
#include "semantic/SearchResult.h"
#include "semantic/TagRecommendation.h"

#include <QCoroTask>
#include <QHash>
#include <QList>
#include <QObject>

#include <memory>
#include <optional>
#include <vector>

namespace Qorvane {

/// Owns the two encoders and answers with them: it embeds pictures and texts, and searches by text.
///
/// Lives on the GUI thread, as all its operations and fields do. The operations are coroutines: decoding,
/// preprocessing, inference, reads of the store and scoring happen on worker threads, and the GUI thread
/// never waits for them. Any number may be under way at once. None throws; a failure is a log line and an
/// empty result.
class ChineseClipService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool modelsLoaded READ modelsLoaded NOTIFY modelsLoadedChanged)
    Q_PROPERTY(bool isLoadingModels READ isLoadingModels NOTIFY isLoadingModelsChanged)

public:
    /// Loads nothing yet.
    explicit ChineseClipService(QObject *parent = nullptr);
    /// Waits for nothing. Operations still under way end without a result, once the event loop gets to them.
    ~ChineseClipService() override;

    /// Whether both encoders are there. Never becomes false again.
    bool modelsLoaded() const { return m_modelsLoaded; }
    bool isLoadingModels() const { return m_isLoadingModels; }
    /// Whether a load was begun at any time, whatever came of it.
    bool hasTriedLoading() const { return m_hasTriedLoading; }
    /// What similarities are multiplied by before the softmax.
    float logitScale() const { return m_logitScale; }
    /// What `extractFeatures` has embedded.
    const ImageFeatures &imageFeatures() const { return m_imageFeatures; }
    /// The vectors of tags that are in memory, as a copy.
    QHash<QString, std::vector<float>> tagVectorCache() const;

    /// Whether the vectors of all predefined tags were made ready. Never becomes false again.
    bool predefinedTagsPrecomputed() const { return m_predefinedTagVectors.isComplete(); }

    /// Loads the encoders for the user's language unless they are loaded, and then has the predefined tags
    /// precomputed: `modelsLoaded` tells when the encoders can be used, long before the first such pass is
    /// over. A call during either returns at once, without waiting for it.
    QCoro::Task<> ensureModelsLoaded();

    /// Embeds `image`; `label` names it in the log. The vector has unit length or is all zero; nothing on
    /// failure.
    QCoro::Task<std::optional<std::vector<float>>> extractImageFeatures(Image image,
                                                                        std::optional<QString> label = {});
    /// The same for `text`.
    QCoro::Task<std::optional<std::vector<float>>> extractTextFeatures(QString text);

    /// Begins to embed `text` on `workers`, at once and without a word: all lines are in the result. Empty
    /// when the service goes meanwhile.
    QFuture<Extraction> startTextExtraction(const QString &text, WorkerPool &workers) const;

    /// Embeds the pictures at `urls` one after the other by their thumbnails, and keeps the vectors in
    /// `imageFeatures`.
    QCoro::Task<> extractFeatures(QList<FileUrl> urls);

    /// The pictures of the store that match `query`, best first, at most `limit`: of those in `scope`, or of
    /// the whole library when it is empty.
    QCoro::Task<QList<SearchResult>> searchWithDatabase(QString query, QList<FileUrl> scope, int limit);

    /// The same among `imageFeatures`, with much to say about them.
    QCoro::Task<QList<SearchResult>> search(QString query, int limit);

    /// The tags closest to the photo at `url`, best first, at most `limit`: of `userTags` and the predefined
    /// ones of the user's language, without `existingTags`, which the photo has. Empty when the photo can't
    /// be embedded.
    QCoro::Task<QList<TagRecommendation>> recommendTags(FileUrl url, QStringList userTags,
                                                        QStringList existingTags, int limit);

    /// The vector of the text `tag`: from memory, else from the store, else from the encoder, and then kept
    /// in both.
    QCoro::Task<std::optional<std::vector<float>>> getTagVector(QString tag);

    /// Makes the vectors of all predefined tags of the user's language ready in memory, unless that was done:
    /// from the store, and what isn't there yet from the encoder, one tag after the other. Every other tag's
    /// vector leaves the store.
    QCoro::Task<> precomputePredefinedTags();

    /// The picture by which the photo at `url` is embedded: its thumbnail where there is one that loads, else
    /// one made now.
    QCoro::Task<std::optional<Image>> loadImageForAnalysis(FileUrl url);

    /// The text that is searched for `query`: the query itself. Holds the place of an expansion.
    QString expandQuery(const QString &query) const;

Q_SIGNALS:
    void modelsLoadedChanged();
    void isLoadingModelsChanged();
    void imageFeaturesChanged();

private:
    // A hundred thousand candidates change threads without being copied.
    using SharedCandidates = std::shared_ptr<const SearchCandidates>;

    QCoro::Task<> loadModels();
    void setModelsLoaded();
    void setLoadingModels(bool isLoading);
    // Nothing, and no word of it, when there is no picture to be had.
    QCoro::Task<std::optional<std::vector<float>>> extractFileFeatures(FileUrl url);
    QCoro::Task<> verifyCandidates(SharedCandidates candidates, std::vector<float> textVector);

    EncoderPair m_encoders;
    ImageFeatures m_imageFeatures;
    bool m_modelsLoaded = false;
    bool m_isLoadingModels = false;
    bool m_hasTriedLoading = false;
    const float m_logitScale = defaultLogitScale;

    // Queries have threads of their own, so that none waits behind the pictures of an indexing run.
    WorkerPool m_queries;
    WorkerPool m_pictures;
    TagRecommender m_tagRecommender;
    PredefinedTagVectors m_predefinedTagVectors;
};

} // namespace Qorvane
