#include "views/pictures/ThumbnailResponse.h"

#include <QQuickTextureFactory>

namespace Qorvane {

void ThumbnailResponse::Slot::deliver(const QImage &picture)
{
    const std::scoped_lock lock(m_mutex);
    if (!m_response)
        return;
    m_response->m_picture = picture;
    m_response->finishLater();
}

void ThumbnailResponse::Slot::forgetResponse()
{
    const std::scoped_lock lock(m_mutex);
    m_response = nullptr;
}

ThumbnailResponse::ThumbnailResponse(const std::shared_ptr<ThumbnailQueue> &queue)
    : m_queue(queue)
    , m_slot(std::make_shared<Slot>(this))
{
}

ThumbnailResponse::~ThumbnailResponse()
{
    m_slot->forgetResponse();
    dropWork();
}

QQuickTextureFactory *ThumbnailResponse::textureFactory() const
{
    return QQuickTextureFactory::textureFactoryForImage(m_picture);
}

void ThumbnailResponse::cancel()
{
    if (dropWork())
        finishLater();
}

bool ThumbnailResponse::dropWork()
{
    const std::shared_ptr<ThumbnailQueue> queue = m_queue.lock();
    return queue && queue->drop(m_ticket);
}

void ThumbnailResponse::finishLater()
{
    // By way of the reader's event loop, since it may not yet have connected itself to the signal.
    QMetaObject::invokeMethod(this, &QQuickImageResponse::finished, Qt::QueuedConnection);
}

} // namespace Qorvane
