#include "views/sidebar/SidebarListModel.h"

#include "views/sidebar/SidebarTexts.h"

#include <algorithm>

namespace Qorvane {

namespace {

SidebarListModel::Kind kindForQml(SidebarRow::Kind kind)
{
    switch (kind) {
    case SidebarRow::Kind::header:
        return SidebarListModel::Header;
    case SidebarRow::Kind::favorite:
        return SidebarListModel::Favorite;
    case SidebarRow::Kind::folder:
        return SidebarListModel::LibraryFolder;
    case SidebarRow::Kind::rating:
        return SidebarListModel::Rating;
    case SidebarRow::Kind::tag:
        return SidebarListModel::Tag;
    case SidebarRow::Kind::noTags:
        return SidebarListModel::NoTags;
    }
    return SidebarListModel::Header;
}

SidebarListModel::State stateForQml(FolderProcessingState state)
{
    switch (state) {
    case FolderProcessingState::idle:
        return SidebarListModel::Idle;
    case FolderProcessingState::thumbnails:
        return SidebarListModel::Thumbnails;
    case FolderProcessingState::vectors:
        return SidebarListModel::Vectors;
    case FolderProcessingState::completed:
        return SidebarListModel::Completed;
    }
    return SidebarListModel::Idle;
}

} // namespace

SidebarListModel::SidebarListModel(ProgressSource progressSource, QObject *parent)
    : QAbstractListModel(parent)
    , m_progressSource(std::move(progressSource))
    , m_rows(SidebarSections::folderRows(m_content, m_progressSource))
    , m_folderRowCount(int(m_rows.size()))
{
    m_rows += SidebarSections::ratingAndTagRows(m_content);
}

void SidebarListModel::setFolders(const QList<Folder> &favorites, const QList<Folder> &roots)
{
    m_content.favorites = favorites;
    m_content.roots = roots;
    showFolders();
}

void SidebarListModel::showFolders()
{
    const QList<SidebarRow> rows = SidebarSections::folderRows(m_content, m_progressSource);
    const int before = std::exchange(m_folderRowCount, int(rows.size()));
    replaceRows(0, before, rows);
}

void SidebarListModel::setTags(const QStringList &tags)
{
    m_content.tags = tags;
    replaceRows(m_folderRowCount, int(m_rows.size()) - m_folderRowCount,
                SidebarSections::ratingAndTagRows(m_content));
    setSelectedId(m_selectedId); // a tag may have taken over another row's id, or given it back
}

void SidebarListModel::setCounts(const TagAndRatingCounts &counts)
{
    m_content.counts = counts;
    // Listed, but on no file any more. One that is listed from now on is not counted yet, and shows nothing.
    for (const QString &tag : std::as_const(m_content.tags)) {
        if (!counts.tags.contains(tag))
            m_content.counts->tags.insert(tag, 0);
    }
    QList<int> changed;
    for (int row = m_folderRowCount; row < m_rows.size(); ++row) {
        const std::optional<int> count = SidebarSections::countFor(m_rows.at(row), m_content.counts);
        if (count == m_rows.at(row).count)
            continue;
        m_rows[row].count = count;
        changed.append(row);
    }
    announce(changed, {CountRole, SpokenRole});
}

void SidebarListModel::setSelectedId(const std::optional<QString> &id)
{
    QList<bool> before;
    before.reserve(m_rows.size());
    for (const SidebarRow &row : std::as_const(m_rows))
        before.append(isSelected(row));
    m_selectedId = id;
    m_isTagSelected = id && m_content.tags.contains(*id);
    QList<int> changed;
    for (int row = 0; row < m_rows.size(); ++row) {
        if (before.at(row) != isSelected(m_rows.at(row)))
            changed.append(row);
    }
    announce(changed, {IsSelectedRole});
}

// A root inside another one stands in the list twice, under the same id: both rows are marked, since either
// is the selected folder.
bool SidebarListModel::isSelected(const SidebarRow &row) const
{
    return row.isSelectable() && row.id == m_selectedId &&
           (!m_isTagSelected || row.kind == SidebarRow::Kind::tag);
}

int SidebarListModel::selectedRow() const
{
    const auto found =
        std::ranges::find_if(m_rows, [this](const SidebarRow &row) { return isSelected(row); });
    return found == m_rows.cend() ? -1 : int(found - m_rows.cbegin());
}

void SidebarListModel::refreshProgress()
{
    QList<int> changed;
    for (int row = 0; row < m_folderRowCount; ++row) {
        if (!m_rows.at(row).isFolder())
            continue;
        const FolderProgress progress = m_progressSource(m_rows.at(row).url);
        if (progress == m_rows.at(row).progress)
            continue;
        m_rows[row].progress = progress;
        changed.append(row);
    }
    announce(changed, {StateRole, ProgressRole, PercentRole, DetailRole});
}

void SidebarListModel::toggle(int row)
{
    if (row < 0 || row >= m_rows.size() || !m_rows.at(row).hasChildren)
        return;
    const FileUrl url = m_rows.at(row).url;
    if (!m_content.expanded.remove(url))
        m_content.expanded.insert(url);
    showFolders();
}

// What both ends have in common stays, what lies between goes and comes: one stretch, which is all that
// adding, removing, folding or unfolding anything ever changes.
void SidebarListModel::replaceRows(int first, int count, const QList<SidebarRow> &rows)
{
    const int shorter = std::min(count, int(rows.size()));
    int head = 0;
    while (head < shorter && isSameRow(m_rows.at(first + head), rows.at(head)))
        ++head;
    int tail = 0;
    while (tail < shorter - head &&
           isSameRow(m_rows.at(first + count - 1 - tail), rows.at(rows.size() - 1 - tail)))
        ++tail;

    const int start = first + head;
    if (const int removed = count - head - tail; removed > 0) {
        beginRemoveRows({}, start, start + removed - 1);
        m_rows.remove(start, removed);
        endRemoveRows();
    }
    if (const int inserted = int(rows.size()) - head - tail; inserted > 0) {
        beginInsertRows({}, start, start + inserted - 1);
        m_rows.insert(start, inserted, SidebarRow());
        std::ranges::copy(rows.sliced(head, inserted), m_rows.begin() + start);
        endInsertRows();
    }

    QList<int> changed;
    for (int row = 0; row < rows.size(); ++row) {
        if (m_rows.at(first + row) == rows.at(row))
            continue;
        m_rows[first + row] = rows.at(row);
        changed.append(first + row);
    }
    announce(changed, {});
}

// Neighbours in one signal: the list takes thousands of tags whose counts came at once as a single change.
void SidebarListModel::announce(const QList<int> &changedRows, const QList<int> &roles)
{
    for (qsizetype i = 0; i < changedRows.size();) {
        qsizetype end = i + 1;
        while (end < changedRows.size() && changedRows.at(end) == changedRows.at(end - 1) + 1)
            ++end;
        Q_EMIT dataChanged(index(changedRows.at(i)), index(changedRows.at(end - 1)), roles);
        i = end;
    }
}

int SidebarListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant SidebarListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const SidebarRow &row = m_rows.at(index.row());
    switch (role) {
    case KindRole:
        return kindForQml(row.kind);
    case NameRole:
    case Qt::DisplayRole:
        return row.name;
    case DepthRole:
        return row.depth;
    case HasChildrenRole:
        return row.hasChildren;
    case IsExpandedRole:
        return row.isExpanded;
    case IsSelectedRole:
        return isSelected(row);
    case IsFavoriteRole:
        return row.isFavorite;
    case StateRole:
        return stateForQml(row.progress.state);
    case ProgressRole:
        return row.progress.progress;
    case PercentRole:
        return SidebarTexts::percentText(row.progress.progress);
    case DetailRole:
        return row.progress.detail;
    case CountRole:
        return SidebarTexts::countText(row);
    case SpokenRole:
        return SidebarTexts::spokenName(row);
    default:
        return {};
    }
}

QHash<int, QByteArray> SidebarListModel::roleNames() const
{
    return {{KindRole, "kind"},
            {NameRole, "name"},
            {DepthRole, "depth"},
            {HasChildrenRole, "hasChildren"},
            {IsExpandedRole, "isExpanded"},
            {IsSelectedRole, "isSelected"},
            {IsFavoriteRole, "isFavorite"},
            {StateRole, "runState"},
            {ProgressRole, "progress"},
            {PercentRole, "percent"},
            {DetailRole, "detail"},
            {CountRole, "count"},
            {SpokenRole, "spoken"}};
}

} // namespace Qorvane
