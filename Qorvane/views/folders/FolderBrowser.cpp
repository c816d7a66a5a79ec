#include "views/folders/FolderBrowser.h"

#include "library/DirectoryListing.h"
#include "platform/FileAttributes.h"
#include "platform/MainQueue.h"
#include "platform/NaturalOrder.h"

#include <QDir>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace Qorvane {

namespace {

bool isFolder(const QString &directory, const DirectoryEntry &entry)
{
    switch (entry.kind) {
    case EntryKind::directory:
        return true;
    case EntryKind::symbolicLink:
        return directoryExists(childPath(directory, *entry.name));
    case EntryKind::other:
        return false;
    }
    return false;
}

// The names in the order of file managers. Names that aren't text can't be in the library either.
std::optional<QStringList> folderNames(const QString &path)
{
    const std::optional<DirectoryListing> listing = listDirectory(path);
    if (!listing)
        return std::nullopt;
    QStringList names;
    for (const DirectoryEntry &entry : listing->entries) {
        if (entry.name && isFolder(path, entry))
            names.append(*entry.name);
    }
    std::ranges::sort(names,
                      [](const QString &a, const QString &b) { return localizedStandardCompare(a, b) < 0; });
    return names;
}

} // namespace

FolderBrowser::FolderBrowser(QObject *parent)
    : FolderBrowser(folderNames, parent)
{
}

FolderBrowser::FolderBrowser(Source source, QObject *parent)
    : QAbstractListModel(parent)
    , m_source(std::move(source))
{
}

void FolderBrowser::open(const QString &path)
{
    read(path.isEmpty() ? QDir::homePath() : QDir::cleanPath(path), {});
}

void FolderBrowser::openRow(int row)
{
    if (row >= 0 && row < count())
        read(childPath(m_path, m_names.at(row)), {});
}

void FolderBrowser::openCurrentRow()
{
    if (m_selected.contains(m_currentRow))
        openRow(m_currentRow);
}

void FolderBrowser::openParent()
{
    if (!hasParent())
        return;
    const qsizetype slash = m_path.lastIndexOf(u'/');
    read(slash == 0 ? QStringLiteral("/") : m_path.first(slash), m_path.sliced(slash + 1));
}

void FolderBrowser::read(const QString &path, const QString &nameToSelect)
{
    setState(Reading);
    // The read before is outdated: it is dropped, or left behind where it hangs.
    m_reader.emplace(QualityOfService::userInitiated, 1);
    m_reader->start([self = QPointer(this), source = m_source, path, nameToSelect, number = ++m_reading] {
        MainQueue::async([self, path, nameToSelect, number, names = source(path)] {
            if (!self || self->m_reading != number)
                return;
            if (names)
                self->show(path, *names, nameToSelect);
            self->setState(names ? Listed : Unreadable);
        });
    });
}

void FolderBrowser::show(const QString &path, const QStringList &names, const QString &nameToSelect)
{
    beginResetModel();
    m_path = path;
    m_names = names;
    m_selected.clear();
    m_currentRow = int(m_names.indexOf(nameToSelect));
    if (m_currentRow >= 0)
        m_selected.insert(m_currentRow);
    m_anchor = std::max(0, m_currentRow);
    endResetModel();
    Q_EMIT pathChanged();
    Q_EMIT currentRowChanged();
    Q_EMIT selectionChanged();
}

void FolderBrowser::click(int row, Qt::KeyboardModifiers modifiers)
{
    if (row < 0 || row >= count())
        return;
    if (std::exchange(m_currentRow, row) != row)
        Q_EMIT currentRowChanged();
    QSet<int> rows;
    if (modifiers & Qt::ShiftModifier) {
        for (int i = std::min(row, m_anchor); i <= std::max(row, m_anchor); ++i)
            rows.insert(i);
        setSelected(rows);
        return;
    }
    m_anchor = row;
    if (modifiers & Qt::ControlModifier) {
        rows = m_selected;
        if (!rows.remove(row))
            rows.insert(row);
    } else {
        rows.insert(row);
    }
    setSelected(rows);
}

void FolderBrowser::moveCurrentRow(int step, Qt::KeyboardModifiers modifiers)
{
    const int row = m_currentRow < 0 ? 0 : m_currentRow + step;
    click(std::clamp(row, 0, std::max(0, count() - 1)), modifiers);
}

QList<QUrl> FolderBrowser::chosen() const
{
    if (m_selected.isEmpty()) {
        // A stray Enter at the very start must not put everything the user has into the library.
        const bool isTooMuch = m_path.isEmpty() || m_path == QDir::homePath() || !hasParent();
        return isTooMuch ? QList<QUrl>() : QList<QUrl>{QUrl::fromLocalFile(m_path)};
    }
    QList<QUrl> urls;
    for (int row = 0; row < count(); ++row) {
        if (m_selected.contains(row))
            urls.append(QUrl::fromLocalFile(childPath(m_path, m_names.at(row))));
    }
    return urls;
}

void FolderBrowser::setState(State state)
{
    if (std::exchange(m_state, state) != state)
        Q_EMIT stateChanged();
}

void FolderBrowser::setSelected(const QSet<int> &rows)
{
    const QSet<int> before = std::exchange(m_selected, rows);
    for (int row = 0; row < count(); ++row) {
        if (before.contains(row) != rows.contains(row))
            Q_EMIT dataChanged(index(row), index(row), {IsSelectedRole});
    }
    Q_EMIT selectionChanged();
    // What couldn't be read was the selected folder, or the one around: with another one selected that is
    // over.
    if (m_state == Unreadable)
        setState(Listed);
}

int FolderBrowser::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant FolderBrowser::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    switch (role) {
    case NameRole:
    case Qt::DisplayRole:
        return m_names.at(index.row());
    case IsSelectedRole:
        return m_selected.contains(index.row());
    default:
        return {};
    }
}

QHash<int, QByteArray> FolderBrowser::roleNames() const
{
    return {{NameRole, "name"}, {IsSelectedRole, "isSelected"}};
}

} // namespace Qorvane
