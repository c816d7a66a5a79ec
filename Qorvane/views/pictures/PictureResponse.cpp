#include "views/pictures/PictureResponse.h"

#include <QQuickTextureFactory>

#include <utility>

namespace Qorvane {

namespace {

QImage clearPixel()
{
    QImage pixel(1, 1, QImage::Format_ARGB32_Premultiplied);
    pixel.fill(Qt::transparent);
    return pixel;
}

} // namespace

void PictureResponse::Slot::deliver(const QImage &picture)
{
    const std::scoped_lock lock(m_mutex);
    if (!m_response)
        return;
    m_response->m_picture = picture;
    m_response->finishLater();
}

void PictureResponse::Slot::forgetResponse()
{
    const std::scoped_lock lock(m_mutex);
    m_response = nullptr;
}

std::unique_ptr<PictureResponse> PictureResponse::to(const std::shared_ptr<PictureQueue> &queue,
                                                     const QString &path, Load load)
{
    auto response = std::make_unique<PictureResponse>(queue);
    response->m_ticket = queue->add(path, [slot = response->m_slot, load = std::move(load)] {
        const QImage picture = load();
        return [slot, picture = picture.isNull() ? clearPixel() : picture] { slot->deliver(picture); };
    });
    return response;
}

std::unique_ptr<PictureResponse> PictureResponse::withoutPicture()
{
    auto response = std::make_unique<PictureResponse>(nullptr);
    response->m_slot->deliver(clearPixel());
    return response;
}

PictureResponse::PictureResponse(const std::shared_ptr<PictureQueue> &queue)
    : m_queue(queue)
    , m_slot(std::make_shared<Slot>(this))
{
}

PictureResponse::~PictureResponse()
{
    m_slot->forgetResponse();
    dropWork();
}

QQuickTextureFactory *PictureResponse::textureFactory() const
{
    return QQuickTextureFactory::textureFactoryForImage(m_picture);
}

void PictureResponse::cancel()
{
    if (dropWork())
        finishLater();
}

bool PictureResponse::dropWork()
{
    const std::shared_ptr<PictureQueue> queue = m_queue.lock();
    return queue && queue->drop(m_ticket);
}

void PictureResponse::finishLater()
{
    // By way of the reader's event loop, since it may not yet have connected itself to the signal.
    QMetaObject::invokeMethod(this, &QQuickImageResponse::finished, Qt::QueuedConnection);
}

} // namespace Qorvane
