#pragma once

#include <QObject>
#include <QSize>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace Qorvane {

/// What a cell asks the thumbnail provider for: a file's thumbnail, cut to `size` and with rounded corners.
/// Cut and corners are made with the picture rather than on screen, where the software scene graph has no
/// masks.
struct ThumbnailRequest
{
    /// Of the provider that takes these requests.
    static constexpr auto providerId = "thumbnails";

    QString path;
    QSize size;       ///< logical pixels
    int radius = 0;   ///< of the corners, logical pixels
    int revision = 0; ///< only keeps the answers apart

    /// The provider's id for this request, fit to stand in a URL.
    QString toId() const;
    /// Nothing when `id` isn't one that `toId` writes.
    static std::optional<ThumbnailRequest> fromId(const QString &id);

    friend bool operator==(const ThumbnailRequest &, const ThumbnailRequest &) = default;
};

/// The same for QML. GUI thread.
class ThumbnailUrl : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    /// The image source for the thumbnail of the file at `path`; for `revision` see ThumbnailRevisions.
    Q_INVOKABLE QString source(const QString &path, int width, int height, int radius, int revision) const;

    /// A source of the file at `path` was answered without a picture. The toolkit keeps that answer, for all
    /// windows: from now on the file's sources are others, so that the next cell asks again.
    Q_INVOKABLE void noteEmpty(const QString &path);
};

} // namespace Qorvane
