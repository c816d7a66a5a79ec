#pragma once

#include "platform/FileUrl.h"

#include <QJsonObject>
#include <QList>
#include <QMetaType>

#include <optional>

namespace Qorvane {

/// A folder of the library with the tree of folders below it. A value: copies share their trees.
struct Folder
{
    FileUrl url;
    /// The sub-folders; nothing (never an empty list) when there are none or they couldn't be read.
    std::optional<QList<Folder>> children;

    /// What folders are told apart by in lists: the absolute text of the address.
    QString id() const { return url.absoluteString(); }

    /// {"url": absolute text, "children": [...]}; without "children" when there are none.
    QJsonObject toJson() const;
    /// Nothing when `object` isn't what `toJson` writes.
    static std::optional<Folder> fromJson(const QJsonObject &object);
};

/// Same address and same tree, order included; no sub-folders differ from any list of them.
// Not defaulted: the comparison of a list of an unfinished type can't be found from inside that type.
bool operator==(const Folder &a, const Folder &b);
size_t qHash(const Folder &folder, size_t seed = 0);

} // namespace Qorvane

template <>
struct std::hash<Qorvane::Folder>
{
    size_t operator()(const Qorvane::Folder &folder) const noexcept { return qHash(folder); }
};

Q_DECLARE_METATYPE(Qorvane::Folder)
