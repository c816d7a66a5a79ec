#pragma once

#include "library/Folder.h"
#include "views/sidebar/SidebarRow.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QStringList>

#include <functional>

namespace Qorvane {

/// How many files carry each tag and each number of stars.
struct TagAndRatingCounts
{
    QHash<QString, int> tags;
    QHash<int, int> ratings; ///< numbers of stars that no file has are absent

    friend bool operator==(const TagAndRatingCounts &, const TagAndRatingCounts &) = default;
};

/// What the sidebar is made of.
struct SidebarContent
{
    QList<Folder> favorites;
    QList<Folder> roots;
    QStringList tags;
    /// Nothing until they have been read for the first time.
    std::optional<TagAndRatingCounts> counts;
    QSet<FileUrl> expanded;
};

/// The sidebar's four sections as rows. Any thread.
namespace SidebarSections {

/// Answers for a folder what its row shows.
using ProgressSource = std::function<FolderProgress(const FileUrl &folder)>;

/// The favourites, flat, and the library's folders as far as they are unfolded, each below its header.
QList<SidebarRow> folderRows(const SidebarContent &content, const ProgressSource &progress);
/// The ratings and the tags, each below its header.
QList<SidebarRow> ratingAndTagRows(const SidebarContent &content);

/// What `row` shows as its count: nothing for a tag that the counts don't know yet, and nothing before the
/// first ones have come. A 0 there would be a claim that nobody has checked.
std::optional<int> countFor(const SidebarRow &row, const std::optional<TagAndRatingCounts> &counts);

} // namespace SidebarSections

} // namespace Qorvane
