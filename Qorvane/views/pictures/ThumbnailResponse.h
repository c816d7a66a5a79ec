#pragma once

#include "views/pictures/ThumbnailQueue.h"

#include <QImage>
#include <QQuickImageResponse>

#include <memory>
#include <mutex>

namespace Qorvane {

/// The answer to one request of the thumbnail provider. Lives on the image reader's thread.
class ThumbnailResponse : public QQuickImageResponse
{
    Q_OBJECT

public:
    /// Where the worker leaves its picture. It may outlive the response, which the engine deletes as it sees
    /// fit when the window goes.
    class Slot
    {
    public:
        explicit Slot(ThumbnailResponse *response)
            : m_response(response)
        {
        }

        /// Any thread.
        void deliver(const QImage &picture);
        void forgetResponse();

    private:
        std::mutex m_mutex;
        ThumbnailResponse *m_response;
    };

    explicit ThumbnailResponse(const std::shared_ptr<ThumbnailQueue> &queue);
    ~ThumbnailResponse() override;

    /// For the worker.
    const std::shared_ptr<Slot> &slot() const { return m_slot; }
    void setTicket(ThumbnailQueue::Ticket ticket) { m_ticket = ticket; }

    QQuickTextureFactory *textureFactory() const override;
    /// The engine waits for `finished` even then, so it follows in any case.
    void cancel() override;

private:
    void finishLater();
    bool dropWork();

    // Not owned: the engine never deletes a response that wasn't answered when it went.
    std::weak_ptr<ThumbnailQueue> m_queue;
    std::shared_ptr<Slot> m_slot;
    ThumbnailQueue::Ticket m_ticket = 0;
    QImage m_picture;
};

} // namespace Qorvane
