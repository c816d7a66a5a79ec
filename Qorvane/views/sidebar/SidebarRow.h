#pragma once

#include "platform/FileUrl.h"
#include "views/sidebar/FolderProgress.h"

#include <QString>

#include <optional>

namespace Qorvane {

/// What the id of a rating's row begins with.
inline const QString ratingIdPrefix = QStringLiteral("rating-");

inline QString ratingId(int rating)
{
    return ratingIdPrefix + QString::number(rating);
}

/// One row of the sidebar, whatever its kind.
struct SidebarRow
{
    enum class Kind {
        header,
        favorite,
        folder, ///< of the library, at any depth
        rating,
        tag,
        noTags, ///< the text in place of tags
    };

    Kind kind = Kind::header;
    /// What the selection knows the row by; empty for a row that can't be selected. All rows share one space
    /// of ids, and a tag's is the bare tag: it may be the same as that of another row.
    QString id;
    /// A folder's name, a tag, a rating's stars, or the text of a header.
    QString name;
    FileUrl url; ///< of the folder kinds
    int rating = 0;
    int depth = 0;
    bool hasChildren = false;
    bool isExpanded = false;
    /// A folder of the library that is a favourite too.
    bool isFavorite = false;
    FolderProgress progress;
    /// Files with that rating or tag; nothing until they have been counted.
    std::optional<int> count;

    bool isFolder() const { return kind == Kind::favorite || kind == Kind::folder; }
    bool isSelectable() const { return kind != Kind::header && kind != Kind::noTags; }

    friend bool operator==(const SidebarRow &, const SidebarRow &) = default;
};

/// Whether both rows stand for the same thing in the same place, though it may look different by now.
inline bool isSameRow(const SidebarRow &a, const SidebarRow &b)
{
    return a.kind == b.kind && a.depth == b.depth && a.id == b.id && a.name == b.name;
}

} // namespace Qorvane
