#pragma once

#include <QObject>

namespace Qorvane {

class SidebarListModel;

/// The row that keys move from. Stays with its row while others come and go; the row gone, it is the one that
/// can be selected above, else below. GUI thread.
class SidebarCursor : public QObject
{
    Q_OBJECT

public:
    /// `rows` outlives this object.
    explicit SidebarCursor(const SidebarListModel &rows, QObject *parent = nullptr);

    /// -1 for none.
    int row() const { return m_row; }
    void set(int row);

Q_SIGNALS:
    /// Also after changes of the list that left the number alone: views may have lost their own with them.
    void moved();

private:
    void makeRoom(int first, int last);
    void closeUp(int first, int last);

    const SidebarListModel &m_rows;
    int m_row = -1;
};

} // namespace Qorvane
