#include "store/EmbeddingStore.h"

#include "platform/Log.h"
#include "platform/PredefinedTags.h"
#include "platform/WhiteSpace.h"
#include "store/ImageRemoval.h"
#include "store/RowCounts.h"
#include "store/StoreReports.h"
#include "store/TagSuggestions.h"

#include <algorithm>
#include <limits>

namespace Qorvane {

namespace {

// More than are wanted are asked for, since some fall out as equal but for case; and a screenful at least.
int suggestionsToRead(int limit)
{
    constexpr qint64 fewest = 20;
    constexpr qint64 most = std::numeric_limits<int>::max();
    return int(std::clamp(qint64(limit) * 3, fewest, most));
}

} // namespace

EmbeddingStore &EmbeddingStore::shared()
{
    // Lives until the process ends: background runs may still be inside an operation when static objects go.
    static EmbeddingStore *const instance = new EmbeddingStore;
    return *instance;
}

EmbeddingStore::EmbeddingStore()
    : m_images(m_connection)
    , m_tags(m_connection)
    , m_ratings(m_connection)
    , m_tagVectors(m_connection)
    , m_settings(m_connection)
    , m_queue("com.qorvane.embeddingstore", QualityOfService::utility)
{
    m_connection.openDatabase();
    m_connection.createTables();
}

template <typename Body>
std::invoke_result_t<Body> EmbeddingStore::onQueue(const Body &body)
{
    using Result = std::invoke_result_t<Body>;
    if constexpr (std::is_void_v<Result>) {
        m_queue.sync([&] {
            body();
            m_connection.closeRetired();
        });
    } else {
        Result result{};
        onQueue([&] { result = body(); });
        return result;
    }
}

void EmbeddingStore::upsert(const QString &path, const std::optional<QString> &thumbnailPath,
                            const std::vector<float> &vector, int dim, double mtime)
{
    onQueue([&] { m_images.upsert(path, thumbnailPath, vector, dim, mtime); });
}

bool EmbeddingStore::isUpToDate(const QString &path, double mtime)
{
    return onQueue([&] { return m_images.isUpToDate(path, mtime); });
}

std::vector<ImageVectorRow> EmbeddingStore::fetch(const QStringList &paths)
{
    std::vector<ImageVectorRow> rows;
    if (!paths.isEmpty())
        scanVectors(paths, [&rows](const ImageVectorView &row) { rows.push_back(row.copy()); });
    return rows;
}

std::vector<ImageVectorRow> EmbeddingStore::fetchAll()
{
    std::vector<ImageVectorRow> rows;
    scanVectors({}, [&rows](const ImageVectorView &row) { rows.push_back(row.copy()); });
    return rows;
}

void EmbeddingStore::scanVectors(const QStringList &scope, const VectorVisitor &visitor)
{
    onQueue([&] {
        if (scope.isEmpty())
            m_images.visitAll(visitor);
        else
            m_images.visit(scope, visitor);
    });
}

int EmbeddingStore::getImageCount()
{
    return onQueue([&] { return countImages(m_connection); });
}

int EmbeddingStore::getTagVectorCount()
{
    return onQueue([&] { return countTagVectors(m_connection); });
}

void EmbeddingStore::deletePaths(const QStringList &paths)
{
    if (!paths.isEmpty())
        onQueue([&] { ImageRemoval(m_connection).deletePaths(paths); });
}

void EmbeddingStore::deleteFolder(const QString &folderPath)
{
    Log::line(QStringLiteral("🗑️ 开始删除文件夹记录: ") + folderPath);
    onQueue([&] { ImageRemoval(m_connection).deleteFolder(folderPath); });
}

QStringList EmbeddingStore::fetchPathsWithPrefix(const QString &prefix)
{
    return onQueue([&] { return m_images.fetchPathsWithPrefix(prefix); });
}

void EmbeddingStore::verifyFolderDeletion(const QString &folderPath)
{
    onQueue([&] { reportFolderDeletion(m_connection, folderPath); });
}

void EmbeddingStore::printStatistics()
{
    onQueue([&] { reportStatistics(m_connection); });
}

void EmbeddingStore::addTag(const QString &path, const QString &tag)
{
    const QString trimmed = trimmedWhiteSpace(tag);
    if (!trimmed.isEmpty())
        onQueue([&] { m_tags.addTag(path, trimmed); });
}

void EmbeddingStore::removeTag(const QString &path, const QString &tag)
{
    onQueue([&] { m_tags.removeTag(path, tag); });
}

void EmbeddingStore::replaceTag(const QString &path, const QString &oldTag, const QString &newTag)
{
    const QString trimmed = trimmedWhiteSpace(newTag);
    if (!trimmed.isEmpty())
        onQueue([&] { m_tags.replaceTag(path, oldTag, trimmed); });
}

void EmbeddingStore::deleteTagGlobally(const QString &tag)
{
    onQueue([&] { m_tags.deleteTagGlobally(tag); });
}

QStringList EmbeddingStore::listAllTags()
{
    return onQueue([&] { return m_tags.listAllTags(); });
}

QStringList EmbeddingStore::getTags(const QString &path)
{
    return onQueue([&] { return m_tags.getTags(path); });
}

QStringList EmbeddingStore::searchTags(const QString &prefix, int limit, bool includePredefined)
{
    const QString trimmed = trimmedWhiteSpace(prefix);
    if (trimmed.isEmpty())
        return {};
    const QStringList stored = onQueue([&] { return m_tags.searchTags(trimmed, suggestionsToRead(limit)); });
    return interleavedTags(
        stored, includePredefined ? tagsBeginningWith(predefinedTags(), trimmed.toLower()) : QStringList(),
        limit);
}

int EmbeddingStore::getTagCount(const QString &tag)
{
    return onQueue([&] { return m_tags.getTagCount(tag); });
}

QHash<QString, int> EmbeddingStore::getAllTagCounts()
{
    return onQueue([&] { return m_tags.getAllTagCounts(); });
}

QStringList EmbeddingStore::fetchPathsByTag(const QString &tag)
{
    Log::line(QStringLiteral("🏷️ EmbeddingStore: fetchPathsByTag called with tag: '") + tag + u'\'');
    const QStringList paths = onQueue([&] { return m_tags.fetchPathsByTag(tag); });
    Log::line(QStringLiteral("🏷️ EmbeddingStore: fetchPathsByTag returning ") +
              QString::number(paths.size()) + QStringLiteral(" paths for tag '") + tag + u'\'');
    return paths;
}

void EmbeddingStore::setRating(const QString &path, std::optional<int> rating)
{
    onQueue([&] { m_ratings.setRating(path, rating); });
}

void EmbeddingStore::clearRating(const QString &path)
{
    setRating(path, std::nullopt);
}

std::optional<int> EmbeddingStore::getRating(const QString &path)
{
    return onQueue([&] { return m_ratings.getRating(path); });
}

int EmbeddingStore::getRatingCount(int rating)
{
    return onQueue([&] { return m_ratings.getRatingCount(rating); });
}

QHash<int, int> EmbeddingStore::getAllRatingCounts()
{
    return onQueue([&] { return m_ratings.getAllRatingCounts(); });
}

QStringList EmbeddingStore::fetchPathsByRating(int rating)
{
    return onQueue([&] { return m_ratings.fetchPathsByRating(rating); });
}

void EmbeddingStore::storeTagVector(const QString &tag, const std::vector<float> &vector)
{
    if (!vector.empty())
        onQueue([&] { m_tagVectors.storeTagVector(tag, vector); });
}

std::optional<std::vector<float>> EmbeddingStore::loadTagVector(const QString &tag)
{
    return onQueue([&] { return m_tagVectors.loadTagVector(tag); });
}

TagVectors EmbeddingStore::loadAllTagVectors()
{
    return onQueue([&] { return m_tagVectors.loadAllTagVectors(); });
}

void EmbeddingStore::cleanupObsoleteTagVectors(const QSet<QString> &validTags)
{
    onQueue([&] { m_tagVectors.cleanupObsoleteTagVectors(validTags); });
}

void EmbeddingStore::setSetting(const QString &key, const QString &value)
{
    onQueue([&] { m_settings.setSetting(key, value); });
}

std::optional<QString> EmbeddingStore::getSetting(const QString &key)
{
    return onQueue([&] { return m_settings.getSetting(key); });
}

void EmbeddingStore::deleteSetting(const QString &key)
{
    onQueue([&] { m_settings.deleteSetting(key); });
}

} // namespace Qorvane
