#pragma once

#include <QImage>
#include <QQuickAsyncImageProvider>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>

namespace Qorvane {

class PictureQueue;

/// Cuts `picture` to fill `size` (physical pixels) around its middle and rounds the corners by `radius`
/// (physical pixels). Null stays null. Any thread.
QImage fittedThumbnail(const QImage &picture, QSize size, double radius);

/// Serves the image sources that ThumbnailUrl writes. Nothing of it runs on the GUI thread.
class ThumbnailProvider : public QQuickAsyncImageProvider
{
public:
    /// The thumbnail's pixels for the file at `path`; null when there is none. Blocks; runs on the queue's
    /// threads, several at once.
    using Load = std::function<QImage(const QString &path)>;

    explicit ThumbnailProvider(std::shared_ptr<PictureQueue> queue, Load load = loadThumbnail);

    /// A file without a thumbnail gets a picture of one clear pixel: an error would be a line on the console
    /// for every broken file of the user's.
    QQuickImageResponse *requestImageResponse(const QString &id, const QSize &requestedSize) override;

    const std::shared_ptr<PictureQueue> &queue() const { return m_queue; }

    /// Reads the cache of thumbnails, or makes the thumbnail. Blocks; any thread but the GUI's.
    static QImage loadThumbnail(const QString &path);

private:
    std::shared_ptr<PictureQueue> m_queue;
    Load m_load;
};

} // namespace Qorvane
