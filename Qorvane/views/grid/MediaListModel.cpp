#include "views/grid/MediaListModel.h"

#include "views/grid/GridMovement.h"
#include "views/pictures/ThumbnailRevisions.h"
#include "views/selection/MediaSelection.h"

#include <algorithm>

namespace Qorvane {

namespace {

bool isShortenedFrom(const QList<FileUrl> &all, const QList<FileUrl> &kept)
{
    if (kept.isEmpty() || kept.size() > all.size())
        return false;
    auto next = kept.cbegin();
    for (const FileUrl &url : all) {
        if (next != kept.cend() && url == *next)
            ++next;
    }
    return next == kept.cend();
}

std::optional<GridDirection> directionOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return GridDirection::left;
    case Qt::Key_Right:
        return GridDirection::right;
    case Qt::Key_Up:
        return GridDirection::up;
    case Qt::Key_Down:
        return GridDirection::down;
    default:
        return std::nullopt;
    }
}

} // namespace

MediaListModel::MediaListModel(MediaSelection &selection, const ThumbnailRevisions &revisions,
                               IsVideo isVideo, QObject *parent)
    : QAbstractListModel(parent)
    , m_selection(selection)
    , m_revisions(revisions)
    , m_isVideo(std::move(isVideo))
{
    connect(&selection, &MediaSelection::changed, this, &MediaListModel::announceSelection);
    connect(&revisions, &ThumbnailRevisions::revisionChanged, this, &MediaListModel::announceRevision);
}

void MediaListModel::setUrls(const QList<FileUrl> &urls)
{
    if (m_urls == urls)
        return;
    m_visibleRows = {}; // other files may stand in the same places
    if (isShortenedFrom(m_urls, urls)) {
        removeAllBut(urls);
    } else {
        replaceAll(urls);
    }
    Q_EMIT urlsChanged();
    Q_EMIT countChanged();
    Q_EMIT firstSelectedRowChanged();
}

void MediaListModel::replaceAll(const QList<FileUrl> &urls)
{
    const int before = count();
    const int common = int(std::min(m_urls.size(), urls.size()));
    if (before > common) {
        beginRemoveRows({}, common, before - 1);
        m_urls.resize(common);
        forgetRows();
        endRemoveRows();
    }
    std::copy_n(urls.cbegin(), common, m_urls.begin());
    forgetRows();
    if (common > 0)
        Q_EMIT dataChanged(index(0), index(common - 1));
    if (urls.size() > common) {
        beginInsertRows({}, common, int(urls.size()) - 1);
        m_urls = urls;
        forgetRows();
        endInsertRows();
    }
}

void MediaListModel::removeAllBut(const QList<FileUrl> &urls)
{
    qsizetype row = 0;
    while (row < m_urls.size()) {
        if (row < urls.size() && m_urls.at(row) == urls.at(row)) {
            ++row;
            continue;
        }
        // A whole run of lost entries goes in one step.
        qsizetype last = row;
        while (last + 1 < m_urls.size() && (row >= urls.size() || m_urls.at(last + 1) != urls.at(row)))
            ++last;
        beginRemoveRows({}, int(row), int(last));
        m_urls.remove(row, last - row + 1);
        forgetRows();
        endRemoveRows();
    }
}

QString MediaListModel::path(int row) const
{
    return m_urls.value(row).path();
}

void MediaListModel::click(int row, bool isCommandHeld)
{
    if (row >= 0 && row < count())
        m_selection.click(m_urls.at(row), isCommandHeld);
}

void MediaListModel::selectAlone(int row)
{
    if (row >= 0 && row < count())
        m_selection.selectAlone(m_urls.at(row));
}

int MediaListModel::firstSelectedRow() const
{
    if (!m_firstSelectedRow) {
        int first = count();
        for (const FileUrl &url : m_selection.urls()) {
            const auto [begin, end] = rows().equal_range(url);
            for (auto row = begin; row != end; ++row)
                first = std::min(first, *row);
        }
        m_firstSelectedRow = first < count() ? first : -1;
    }
    return *m_firstSelectedRow;
}

int MediaListModel::currentRow() const
{
    return m_urls.isEmpty() ? -1 : std::max(0, firstSelectedRow());
}

void MediaListModel::forgetRows()
{
    m_rows.clear();
    m_firstSelectedRow.reset();
}

const QMultiHash<FileUrl, int> &MediaListModel::rows() const
{
    if (m_rows.isEmpty()) {
        m_rows.reserve(m_urls.size());
        for (int row = 0; row < count(); ++row)
            m_rows.insert(m_urls.at(row), row);
    }
    return m_rows;
}

int MediaListModel::handleKey(int key, int columnCount)
{
    const std::optional<GridDirection> direction = directionOf(key);
    if (!direction || m_urls.isEmpty())
        return -1;
    const int row = movedPosition(*direction, currentRow(), count(), columnCount);
    selectAlone(row);
    return row;
}

void MediaListModel::setViewport(double contentY, double viewHeight, double rowPitch, int columnCount)
{
    const RowRange rows = visibleRows(contentY, viewHeight, rowPitch, columnCount, count());
    if (rows == m_visibleRows)
        return;
    m_visibleRows = rows;
    QSet<QString> paths;
    for (int row = rows.first; row <= rows.last; ++row)
        paths.insert(m_urls.at(row).path());
    Q_EMIT visiblePathsChanged(paths);
}

int MediaListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant MediaListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const FileUrl &url = m_urls.at(index.row());
    switch (role) {
    case PathRole:
        return url.path();
    case NameRole:
    case Qt::DisplayRole:
        return url.lastPathComponent();
    case IsVideoRole:
        return m_isVideo(url);
    case IsSelectedRole:
        return m_selection.urls().contains(url);
    case RevisionRole:
        return m_revisions.revisionOf(url);
    default:
        return {};
    }
}

QHash<int, QByteArray> MediaListModel::roleNames() const
{
    return {{PathRole, "path"},
            {NameRole, "name"},
            {IsVideoRole, "isVideo"},
            {IsSelectedRole, "isSelected"},
            {RevisionRole, "revision"}};
}

void MediaListModel::announceSelection(const QSet<FileUrl> &before)
{
    const QSet<FileUrl> &now = m_selection.urls();
    m_firstSelectedRow.reset();
    QList<int> changed;
    for (const FileUrl &url : (before - now) + (now - before))
        changed += rows().values(url);
    std::ranges::sort(changed);
    for (const int row : std::as_const(changed))
        Q_EMIT dataChanged(index(row), index(row), {IsSelectedRole});
    Q_EMIT firstSelectedRowChanged();
}

void MediaListModel::announceRevision(const FileUrl &url)
{
    const QList<int> changed = rows().values(url);
    for (const int row : changed)
        Q_EMIT dataChanged(index(row), index(row), {RevisionRole});
}

} // namespace Qorvane
