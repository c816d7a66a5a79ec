#include "views/pictures/PictureUrl.h"

#include <QUrl>

namespace Qorvane {

namespace {

constexpr QLatin1String thumbnailName("thumbnail");
constexpr QLatin1String fullName("full");

QString source(PictureRequest::Kind kind, const QString &path)
{
    if (path.isEmpty())
        return {};
    return QStringLiteral("image://%1/%2")
        .arg(QString::fromLatin1(PictureRequest::providerId), PictureRequest{kind, path}.toId());
}

} // namespace

QString PictureRequest::toId() const
{
    return QStringLiteral("%1/%2").arg(kind == Kind::thumbnail ? thumbnailName : fullName,
                                       QString::fromLatin1(QUrl::toPercentEncoding(path)));
}

std::optional<PictureRequest> PictureRequest::fromId(const QString &id)
{
    const qsizetype slash = id.indexOf(u'/');
    const QString name = id.left(slash);
    const QString path = QUrl::fromPercentEncoding(id.mid(slash + 1).toUtf8());
    if (slash < 0 || path.isEmpty())
        return std::nullopt;
    if (name == thumbnailName)
        return PictureRequest{Kind::thumbnail, path};
    if (name == fullName)
        return PictureRequest{Kind::full, path};
    return std::nullopt;
}

QString PictureUrl::thumbnail(const QString &path) const
{
    return source(PictureRequest::Kind::thumbnail, path);
}

QString PictureUrl::full(const QString &path) const
{
    return source(PictureRequest::Kind::full, path);
}

} // namespace Qorvane
