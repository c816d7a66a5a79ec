#include "platform/FileUrl.h"

#include <QUrl>

namespace Qorvane {

FileUrl FileUrl::directory(const QString &path)
{
    qsizetype length = path.size();
    while (length > 1 && path[length - 1] == u'/')
        --length;
    return FileUrl(path.left(length), true);
}

QString FileUrl::absoluteString() const
{
    // The characters that may stand unescaped in the path of a URL (RFC 3986, section 3.3), beside the
    // unreserved ones.
    static const QByteArray allowed = "/!$&'()*+,;=:@";
    QString text = QStringLiteral("file://") + QString::fromLatin1(QUrl::toPercentEncoding(m_path, allowed));
    if (m_isDirectory && !text.endsWith(u'/'))
        text.append(u'/');
    return text;
}

QString FileUrl::lastPathComponent() const
{
    if (m_path.size() <= 1)
        return m_path;
    return m_path.mid(m_path.lastIndexOf(u'/') + 1);
}

QString FileUrl::pathExtension() const
{
    const qsizetype nameStart = m_path.lastIndexOf(u'/') + 1;
    const qsizetype dot = m_path.lastIndexOf(u'.');
    if (dot <= nameStart)
        return {};
    const QString extension = m_path.mid(dot + 1);
    return extension.contains(u' ') ? QString() : extension;
}

FileUrl FileUrl::deletingLastPathComponent() const
{
    const qsizetype slash = m_path.lastIndexOf(u'/');
    return FileUrl(slash <= 0 ? QStringLiteral("/") : m_path.left(slash), true);
}

} // namespace Qorvane
