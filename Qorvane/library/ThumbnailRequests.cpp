#include "library/ThumbnailRequests.h"

#include "library/LibraryState.h"
#include "media/ThumbnailCache.h"
#include "platform/GlobalQueue.h"
#include "platform/MainQueue.h"
#include "platform/QualityOfService.h"

#include <QPromise>

#include <memory>

namespace Qorvane {

ThumbnailRequests::ThumbnailRequests(LibraryState &state)
    : m_state(state)
    , m_self(this)
{
}

ThumbnailRequests::~ThumbnailRequests()
{
    m_pool.clear();
    m_pool.waitForDone();
}

QFuture<std::optional<Image>> ThumbnailRequests::getThumbnail(const FileUrl &file)
{
    return request(&ThumbnailCache::getThumbnail, file);
}

QFuture<std::optional<Image>> ThumbnailRequests::generateVideoThumbnail(const FileUrl &file)
{
    return request(&ThumbnailCache::generateVideoThumbnail, file);
}

QFuture<std::optional<Image>> ThumbnailRequests::generateVideoPreview(const FileUrl &file)
{
    return request(&ThumbnailCache::generateVideoPreview, file);
}

QFuture<std::optional<Image>> ThumbnailRequests::getPreviewImage(const FileUrl &file)
{
    return request(&ThumbnailCache::getPreviewImage, file);
}

QFuture<std::optional<Image>> ThumbnailRequests::request(Maker maker, const FileUrl &file)
{
    const auto promise = std::make_shared<QPromise<std::optional<Image>>>();
    promise->start();
    // Somebody is looking at the place where the picture belongs, whichever thread asks for it.
    withFullWeight([&] {
        m_pool.start([promise, maker, file] {
            if (!promise->isCanceled())
                promise->addResult(maker(file));
            promise->finish();
        });
    });
    return promise->future();
}

void ThumbnailRequests::updateCacheSize()
{
    const quint64 measurement = ++m_measurements;
    GlobalQueue::async(QualityOfService::background, [self = m_self, measurement] {
        const std::optional<double> size = ThumbnailCache::measureCacheSizeInMB();
        if (!size)
            return;
        MainQueue::async([self, measurement, size] {
            if (self)
                self->publishCacheSize(*size, measurement);
        });
    });
}

void ThumbnailRequests::publishCacheSize(double size, quint64 measurement)
{
    if (measurement < m_publishedMeasurement)
        return;
    m_publishedMeasurement = measurement;
    m_state.publishCacheSizeInMB(size);
}

void ThumbnailRequests::clearCache()
{
    GlobalQueue::async(QualityOfService::userInitiated, [self = m_self] {
        if (!ThumbnailCache::clearCache())
            return;
        MainQueue::async([self] {
            if (self)
                self->updateCacheSize();
        });
    });
}

} // namespace Qorvane
