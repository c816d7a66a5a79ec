#pragma once

#include "views/pictures/PictureUrl.h"

#include <QImage>
#include <QQuickAsyncImageProvider>
#include <QString>

#include <array>
#include <functional>
#include <memory>

namespace Qorvane {

class PictureQueue;

/// Serves the image sources that PictureUrl writes: whole pictures of media files, upright and uncut, for the
/// viewer, and before them, at once where the cache has it, the thumbnail. Nothing of it runs on the GUI
/// thread.
class PictureProvider : public QQuickAsyncImageProvider
{
public:
    using Kind = PictureRequest::Kind;

    /// The pixels for the file at `path`, for a full picture at most `maxPixelSize` pixels on the larger
    /// side; null when there are none. Blocks; runs on threads of the provider's own.
    using Load = std::function<QImage(Kind kind, const QString &path, int maxPixelSize)>;

    explicit PictureProvider(Load load = loadPicture);

    /// A file without a picture gets a single clear pixel, as thumbnails do.
    QQuickImageResponse *requestImageResponse(const QString &id, const QSize &requestedSize) override;

    std::array<std::shared_ptr<PictureQueue>, 2> queues() const { return {m_thumbnails, m_fullPictures}; }

    /// Reads the file, or the cache of thumbnails. Blocks; any thread but the GUI's.
    static QImage loadPicture(Kind kind, const QString &path, int maxPixelSize);

private:
    // Each with a thread of its own: the thumbnail, which is to be seen before, waits for no full picture.
    std::shared_ptr<PictureQueue> m_thumbnails;
    std::shared_ptr<PictureQueue> m_fullPictures;
    Load m_load;
};

} // namespace Qorvane
