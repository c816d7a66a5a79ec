#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace Qorvane {

/// What the viewer asks the picture provider for.
struct PictureRequest
{
    /// Of the provider that takes these requests.
    static constexpr auto providerId = "pictures";

    enum class Kind { thumbnail, full };

    Kind kind = Kind::full;
    QString path;

    /// The provider's id for this request, fit to stand in a URL.
    QString toId() const;
    /// Nothing when `id` isn't one that `toId` writes.
    static std::optional<PictureRequest> fromId(const QString &id);

    friend bool operator==(const PictureRequest &, const PictureRequest &) = default;
};

/// The same for QML: image sources for the file at `path`, none without one. Any thread.
class PictureUrl : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    Q_INVOKABLE QString thumbnail(const QString &path) const;
    Q_INVOKABLE QString full(const QString &path) const;
};

} // namespace Qorvane
