#include "clip/ClipTest.h"

#include "media/ThumbnailPaths.h"
#include "platform/DetachedTask.h"
#include "platform/Languages.h"
#include "platform/LeavablePool.h"
#include "store/EmbeddingStore.h"

#include <QColor>
#include <QDir>
#include <QFile>

#include <cmath>

namespace Qorvane {

ClipTest::ClipTest()
{
    Languages::overrideForTests({QStringLiteral("en-US")}, QStringLiteral("en"));
    removeInstalledEncoders();
    EXPECT_TRUE(installTestFamily(QStringLiteral("openai")));
    QStringList paths;
    for (const ImageVectorRow &row : EmbeddingStore::shared().fetchAll())
        paths.append(row.path);
    EmbeddingStore::shared().deletePaths(paths);
    if (const auto cache = thumbnailCacheDirectory())
        QDir(cache->path()).removeRecursively();
    log.clear();
}

ClipTest::~ClipTest()
{
    Languages::endOverrideForTests();
    // A service that went may have left work behind.
    LeavablePool::waitUntilIdle();
    DetachedTask::waitUntilIdle();
}

std::unique_ptr<ChineseClipService> ClipTest::loadedService()
{
    const PredefinedTagsOverride none{QStringList()};
    auto service = std::make_unique<ChineseClipService>();
    QCoro::waitFor(service->ensureModelsLoaded());
    EXPECT_TRUE(service->modelsLoaded()) << qPrintable(log.lines().join(u'\n'));
    log.clear();
    return service;
}

FileUrl ClipTest::makePicture(const QString &name, const QColor &colour)
{
    EXPECT_TRUE(plainPicture(colour).save(url(name).path()));
    return url(name);
}

FileUrl ClipTest::makeBrokenFile(const QString &name)
{
    QFile file(url(name).path());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_GT(file.write("This is no picture."), 0);
    return url(name);
}

FileUrl ClipTest::url(const QString &name) const
{
    return FileUrl::file(m_folder.filePath(name));
}

std::vector<float> vectorWithCosine(size_t axis, float value, size_t length)
{
    std::vector<float> vector(length, 0.0f);
    vector[axis] = value;
    vector[length - 1] = std::sqrt(1 - value * value);
    return vector;
}

void storeVector(const FileUrl &url, const std::vector<float> &vector)
{
    EmbeddingStore::shared().upsert(url.path(), std::nullopt, vector, int(vector.size()), 1.0);
}

QStringList namesOf(const QList<SearchResult> &results)
{
    QStringList names;
    for (const SearchResult &result : results)
        names.append(result.url.lastPathComponent());
    return names;
}

} // namespace Qorvane
