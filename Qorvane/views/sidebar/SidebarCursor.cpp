#include "views/sidebar/SidebarCursor.h"

#include "views/sidebar/SidebarListModel.h"
#include "views/sidebar/SidebarMovement.h"

namespace Qorvane {

SidebarCursor::SidebarCursor(const SidebarListModel &rows, QObject *parent)
    : QObject(parent)
    , m_rows(rows)
{
    connect(&rows, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex &, int first, int last) { makeRoom(first, last); });
    connect(&rows, &QAbstractItemModel::rowsRemoved, this,
            [this](const QModelIndex &, int first, int last) { closeUp(first, last); });
}

void SidebarCursor::set(int row)
{
    if (m_row == row)
        return;
    m_row = row;
    Q_EMIT moved();
}

void SidebarCursor::makeRoom(int first, int last)
{
    if (m_row >= first)
        m_row += last - first + 1;
    Q_EMIT moved();
}

void SidebarCursor::closeUp(int first, int last)
{
    if (m_row > last)
        m_row -= last - first + 1;
    else if (m_row >= first) {
        using SidebarMovement::Key;
        const auto above = SidebarMovement::move(m_rows.rows(), first, Key::up);
        const auto below = SidebarMovement::move(m_rows.rows(), first - 1, Key::down);
        m_row = above ? above->row : below ? below->row : -1;
    }
    Q_EMIT moved();
}

} // namespace Qorvane
