#include "platform/Bookmark.h"

#include "platform/FileAttributes.h"
#include "platform/NativePath.h"

#include <QStringDecoder>

#include <unistd.h>

namespace Qorvane::Bookmark {

namespace {

std::optional<FileUrl> failed(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
    return std::nullopt;
}

} // namespace

std::optional<QByteArray> create(const FileUrl &url, QString *error)
{
    if (!fileAttributes(url.path(), error))
        return std::nullopt;
    return url.path().toUtf8();
}

std::optional<FileUrl> resolve(const QByteArray &bookmark, QString *error)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString path = decoder(bookmark);
    if (decoder.hasError() || !path.startsWith(u'/'))
        return failed(error, QStringLiteral("the bookmark holds no path"));
    const std::optional<FileAttributes> attributes = fileAttributes(path, error);
    if (!attributes)
        return std::nullopt;
    return attributes->isDirectory ? FileUrl::directory(path) : FileUrl::file(path);
}

bool startAccessing(const FileUrl &url)
{
    // A folder's entries can be listed with R alone, but neither they nor its sub-folders be opened.
    const int mode = directoryExists(url.path()) ? R_OK | X_OK : R_OK;
    const std::optional<QByteArray> name = nativePath(url.path());
    return name && ::access(name->constData(), mode) == 0;
}

} // namespace Qorvane::Bookmark
