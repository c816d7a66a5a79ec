#pragma once

#include "views/pictures/PictureQueue.h"

#include <QImage>
#include <QQuickImageResponse>

#include <functional>
#include <memory>
#include <mutex>

namespace Qorvane {

/// The answer to one request of an image provider. Lives on the image reader's thread.
class PictureResponse : public QQuickImageResponse
{
    Q_OBJECT

public:
    /// For the file at `path`: what `load` gives on a thread of the queue's, where it may outlive queue and
    /// response, and so owns all that it uses. A null picture is answered as by `withoutPicture`.
    using Load = std::function<QImage()>;
    static std::unique_ptr<PictureResponse> to(const std::shared_ptr<PictureQueue> &queue,
                                               const QString &path, Load load);

    /// A picture of one clear pixel, which `ProviderImage` knows by its size: an error would be a line on the
    /// console for every broken file of the user's.
    static std::unique_ptr<PictureResponse> withoutPicture();

    explicit PictureResponse(const std::shared_ptr<PictureQueue> &queue);
    ~PictureResponse() override;

    QQuickTextureFactory *textureFactory() const override;
    /// The engine waits for `finished` even then, so it follows in any case.
    void cancel() override;

private:
    /// Where the worker leaves its picture. It may outlive the response, which the engine deletes as it sees
    /// fit when the window goes.
    class Slot
    {
    public:
        explicit Slot(PictureResponse *response)
            : m_response(response)
        {
        }

        /// Any thread.
        void deliver(const QImage &picture);
        void forgetResponse();

    private:
        std::mutex m_mutex;
        PictureResponse *m_response;
    };

    void finishLater();
    bool dropWork();

    // Not owned: the engine never deletes a response that wasn't answered when it went.
    std::weak_ptr<PictureQueue> m_queue;
    std::shared_ptr<Slot> m_slot;
    PictureQueue::Ticket m_ticket = 0;
    QImage m_picture;
};

} // namespace Qorvane
