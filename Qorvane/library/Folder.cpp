#include "library/Folder.h"

#include <QJsonArray>
#include <QUrl>

namespace Qorvane {

bool operator==(const Folder &a, const Folder &b)
{
    return a.url == b.url && a.children == b.children;
}

size_t qHash(const Folder &folder, size_t seed)
{
    if (!folder.children)
        return qHashMulti(seed, folder.url, 0);
    return qHashMulti(seed, folder.url, 1, *folder.children);
}

QJsonObject Folder::toJson() const
{
    QJsonObject object{{QStringLiteral("url"), url.absoluteString()}};
    if (children) {
        QJsonArray array;
        for (const Folder &child : *children)
            array.append(child.toJson());
        object.insert(QStringLiteral("children"), array);
    }
    return object;
}

std::optional<Folder> Folder::fromJson(const QJsonObject &object)
{
    const QUrl url(object.value(QStringLiteral("url")).toString(), QUrl::StrictMode);
    if (!url.isLocalFile())
        return std::nullopt;
    const QString path = url.path(QUrl::FullyDecoded);
    Folder folder{path.endsWith(u'/') ? FileUrl::directory(path) : FileUrl::file(path), std::nullopt};
    const QJsonValue value = object.value(QStringLiteral("children"));
    if (value.isUndefined() || value.isNull())
        return folder;
    if (!value.isArray())
        return std::nullopt;
    QList<Folder> children;
    for (const QJsonValue &entry : value.toArray()) {
        const std::optional<Folder> child = fromJson(entry.toObject());
        if (!child)
            return std::nullopt;
        children.append(*child);
    }
    folder.children = children;
    return folder;
}

} // namespace Qorvane
