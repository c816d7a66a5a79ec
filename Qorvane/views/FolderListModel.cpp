#include "views/FolderListModel.h"

#include "library/SidebarItem.h"

namespace Qorvane {

namespace {

FolderListModel::State stateForQml(FolderProcessingState state)
{
    switch (state) {
    case FolderProcessingState::idle:
        return FolderListModel::Idle;
    case FolderProcessingState::thumbnails:
        return FolderListModel::Thumbnails;
    case FolderProcessingState::vectors:
        return FolderListModel::Vectors;
    case FolderProcessingState::completed:
        return FolderListModel::Completed;
    }
    return FolderListModel::Idle;
}

} // namespace

FolderListModel::FolderListModel(ProgressSource progressSource, QObject *parent)
    : QAbstractListModel(parent)
    , m_progressSource(std::move(progressSource))
{
}

void FolderListModel::setFolders(const QList<Folder> &roots)
{
    m_roots = roots;
    const QList<Row> rows = flattened();
    if (rows == m_rows)
        return;
    beginResetModel();
    m_rows = rows;
    endResetModel();
    Q_EMIT countChanged();
}

void FolderListModel::setSelectedId(const std::optional<QString> &id)
{
    const std::optional<QString> before = std::exchange(m_selectedId, id);
    for (int row = 0; row < count(); ++row) {
        const QString rowId = itemId(m_rows.at(row).url);
        if ((rowId == before) != (rowId == id))
            Q_EMIT dataChanged(index(row), index(row), {IsSelectedRole});
    }
}

void FolderListModel::refreshProgress()
{
    for (int row = 0; row < count(); ++row) {
        const FolderProgress progress = m_progressSource(m_rows.at(row).url);
        if (progress == m_rows.at(row).progress)
            continue;
        m_rows[row].progress = progress;
        Q_EMIT dataChanged(index(row), index(row), {StateRole, ProgressRole, DetailRole});
    }
}

void FolderListModel::toggle(int row)
{
    if (row < 0 || row >= count() || !m_rows.at(row).hasChildren)
        return;
    const int depth = m_rows.at(row).depth;
    const QString text = m_rows.at(row).url.absoluteString();
    const bool expands = !m_expanded.remove(text);
    if (expands)
        m_expanded.insert(text);

    const QList<Row> rows = flattened();
    const qsizetype difference = qAbs(rows.size() - m_rows.size());
    if (expands) {
        beginInsertRows({}, row + 1, row + int(difference));
        m_rows = rows;
        endInsertRows();
    } else {
        beginRemoveRows({}, row + 1, row + int(difference));
        m_rows = rows;
        endRemoveRows();
    }
    Q_ASSERT(m_rows.at(row).depth == depth);
    Q_EMIT dataChanged(index(row), index(row), {IsExpandedRole});
    Q_EMIT countChanged();
}

void FolderListModel::appendRows(QList<Row> &rows, const Folder &folder, int depth) const
{
    const bool hasChildren = folder.children && !folder.children->isEmpty();
    rows.append({folder.url, depth, hasChildren, m_progressSource(folder.url)});
    if (!hasChildren || !isExpanded(rows.constLast()))
        return;
    for (const Folder &child : *folder.children)
        appendRows(rows, child, depth + 1);
}

QList<FolderListModel::Row> FolderListModel::flattened() const
{
    QList<Row> rows;
    for (const Folder &root : m_roots)
        appendRows(rows, root, 0);
    return rows;
}

QString FolderListModel::itemId(const FileUrl &url)
{
    return SidebarItem{Folder{url, std::nullopt}, SidebarItem::ItemType::library}.id();
}

int FolderListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant FolderListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case NameRole:
    case Qt::DisplayRole:
        return row.url.lastPathComponent();
    case ItemIdRole:
        return itemId(row.url);
    case DepthRole:
        return row.depth;
    case HasChildrenRole:
        return row.hasChildren;
    case IsExpandedRole:
        return isExpanded(row);
    case IsSelectedRole:
        return m_selectedId == itemId(row.url);
    case StateRole:
        return stateForQml(row.progress.state);
    case ProgressRole:
        return row.progress.progress;
    case DetailRole:
        return row.progress.detail;
    default:
        return {};
    }
}

QHash<int, QByteArray> FolderListModel::roleNames() const
{
    return {{NameRole, "name"},
            {ItemIdRole, "itemId"},
            {DepthRole, "depth"},
            {HasChildrenRole, "hasChildren"},
            {IsExpandedRole, "isExpanded"},
            {IsSelectedRole, "isSelected"},
            {StateRole, "runState"},
            {ProgressRole, "progress"},
            {DetailRole, "detail"}};
}

} // namespace Qorvane
