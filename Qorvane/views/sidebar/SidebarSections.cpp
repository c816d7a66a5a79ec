#include "views/sidebar/SidebarSections.h"

#include "library/SidebarItem.h"
#include "platform/Localization.h"

namespace Qorvane {

namespace {

constexpr int lowestRating = 1;
constexpr int highestRating = 5;

SidebarRow header(const QString &text)
{
    SidebarRow row;
    row.kind = SidebarRow::Kind::header;
    row.name = text;
    return row;
}

class FolderRows
{
public:
    FolderRows(const SidebarContent &content, const SidebarSections::ProgressSource &progress)
        : m_content(content)
        , m_progress(progress)
    {
        for (const Folder &favorite : content.favorites)
            m_favorites.insert(favorite.url);
    }

    void append(const Folder &folder, SidebarItem::ItemType type, int depth)
    {
        const bool isFavoriteRow = type == SidebarItem::ItemType::favorite;
        SidebarRow row;
        row.kind = isFavoriteRow ? SidebarRow::Kind::favorite : SidebarRow::Kind::folder;
        row.id = SidebarItem{folder, type}.id();
        row.name = folder.url.lastPathComponent();
        row.url = folder.url;
        row.depth = depth;
        row.hasChildren = !isFavoriteRow && folder.children && !folder.children->isEmpty();
        row.isExpanded = row.hasChildren && m_content.expanded.contains(folder.url);
        row.isFavorite = !isFavoriteRow && m_favorites.contains(folder.url);
        row.progress = m_progress(folder.url);
        rows.append(row);
        if (!row.isExpanded)
            return;
        for (const Folder &child : *folder.children)
            append(child, type, depth + 1);
    }

    QList<SidebarRow> rows;

private:
    const SidebarContent &m_content;
    const SidebarSections::ProgressSource &m_progress;
    QSet<FileUrl> m_favorites;
};

} // namespace

QList<SidebarRow> SidebarSections::folderRows(const SidebarContent &content, const ProgressSource &progress)
{
    FolderRows folders(content, progress);
    folders.rows.append(header(localized("Favorites")));
    for (const Folder &favorite : content.favorites)
        folders.append(favorite, SidebarItem::ItemType::favorite, 0);
    folders.rows.append(header(localized("照片库")));
    for (const Folder &root : content.roots)
        folders.append(root, SidebarItem::ItemType::library, 0);
    return folders.rows;
}

QList<SidebarRow> SidebarSections::ratingAndTagRows(const SidebarContent &content)
{
    QList<SidebarRow> rows;
    rows.reserve(content.tags.size() + highestRating + 3);
    rows.append(header(localized("Ratings")));
    for (int rating = lowestRating; rating <= highestRating; ++rating) {
        SidebarRow row;
        row.kind = SidebarRow::Kind::rating;
        row.id = ratingId(rating);
        row.name = QStringLiteral("★").repeated(rating);
        row.rating = rating;
        row.count = countFor(row, content.counts);
        rows.append(row);
    }
    rows.append(header(localized("Tags")));
    if (content.tags.isEmpty()) {
        SidebarRow row;
        row.kind = SidebarRow::Kind::noTags;
        row.name = localized("No tags");
        rows.append(row);
    }
    for (const QString &tag : content.tags) {
        SidebarRow row;
        row.kind = SidebarRow::Kind::tag;
        row.id = tag;
        row.name = tag;
        row.count = countFor(row, content.counts);
        rows.append(row);
    }
    return rows;
}

std::optional<int> SidebarSections::countFor(const SidebarRow &row,
                                             const std::optional<TagAndRatingCounts> &counts)
{
    if (!counts)
        return std::nullopt;
    if (row.kind == SidebarRow::Kind::rating)
        return counts->ratings.value(row.rating, 0);
    const auto found = counts->tags.constFind(row.name);
    if (row.kind != SidebarRow::Kind::tag || found == counts->tags.cend())
        return std::nullopt;
    return *found;
}

} // namespace Qorvane
