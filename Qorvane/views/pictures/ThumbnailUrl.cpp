#include "views/pictures/ThumbnailUrl.h"

#include <QHash>
#include <QRegularExpression>
#include <QUrl>

namespace Qorvane {

namespace {

/// How often each file was answered without a picture.
QHash<QString, int> &emptyAnswers()
{
    static QHash<QString, int> counts;
    return counts;
}

} // namespace

QString ThumbnailRequest::toId() const
{
    return QStringLiteral("%1x%2-%3-%4/%5")
        .arg(size.width())
        .arg(size.height())
        .arg(radius)
        .arg(revision)
        .arg(QString::fromLatin1(QUrl::toPercentEncoding(path)));
}

std::optional<ThumbnailRequest> ThumbnailRequest::fromId(const QString &id)
{
    static const QRegularExpression form(QStringLiteral("^(\\d+)x(\\d+)-(\\d+)-(\\d+)/(.+)$"),
                                         QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(id);
    if (!match.hasMatch())
        return std::nullopt;
    return ThumbnailRequest{QUrl::fromPercentEncoding(match.captured(5).toUtf8()),
                            QSize(match.captured(1).toInt(), match.captured(2).toInt()),
                            match.captured(3).toInt(), match.captured(4).toInt()};
}

QString ThumbnailUrl::source(const QString &path, int width, int height, int radius, int revision) const
{
    // Both only grow, so their sum is another one after each change.
    const int number = revision + emptyAnswers().value(path);
    const QString id = ThumbnailRequest{path, QSize(width, height), radius, number}.toId();
    return QStringLiteral("image://%1/%2").arg(QString::fromLatin1(ThumbnailRequest::providerId), id);
}

void ThumbnailUrl::noteEmpty(const QString &path)
{
    ++emptyAnswers()[path];
}

} // namespace Qorvane
