#pragma once

#include "media/Image.h"
#include "platform/FileUrl.h"

#include <QFuture>
#include <QObject>
#include <QPointer>
#include <QThreadPool>

#include <atomic>
#include <optional>

namespace Qorvane {

class LibraryState;

/// Thumbnails for views, made in the background, and the size of their cache. Any thread, unless said
/// otherwise.
class ThumbnailRequests : public QObject
{
    Q_OBJECT

public:
    /// `state` outlives it. GUI thread.
    explicit ThumbnailRequests(LibraryState &state);
    /// Drops what hasn't begun and waits for what has.
    ~ThumbnailRequests() override;

    /// The futures end with nothing when there is no picture; one cancelled before its turn costs nothing.
    QFuture<std::optional<Image>> getThumbnail(const FileUrl &file);
    QFuture<std::optional<Image>> generateVideoThumbnail(const FileUrl &file);
    QFuture<std::optional<Image>> generateVideoPreview(const FileUrl &file);
    QFuture<std::optional<Image>> getPreviewImage(const FileUrl &file);

    void updateCacheSize();
    void clearCache();

private:
    using Maker = std::optional<Image> (*)(const FileUrl &file);

    QFuture<std::optional<Image>> request(Maker maker, const FileUrl &file);

    /// A measurement that was asked for later has the last word, whichever ends first.
    void publishCacheSize(double size, quint64 measurement);

    LibraryState &m_state;
    const QPointer<ThumbnailRequests> m_self; // made once: only copying it is safe from any thread
    std::atomic<quint64> m_measurements = 0;
    quint64 m_publishedMeasurement = 0;
    /// Of its own, so that a grid full of requests keeps no list load waiting.
    QThreadPool m_pool;
};

} // namespace Qorvane
