#pragma once

#include "views/sidebar/SidebarCounts.h"
#include "views/sidebar/SidebarCursor.h"
#include "views/sidebar/SidebarListModel.h"
#include "views/sidebar/SidebarMenu.h"
#include "views/sidebar/SidebarSelection.h"

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

class QorManage;

/// The left column of the window: its rows over the library, and the steps from keys and clicks to its
/// selection. GUI thread.
class Sidebar : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(Qorvane::SidebarListModel *rows READ rows CONSTANT)
    Q_PROPERTY(Qorvane::SidebarMenu *menu READ menu CONSTANT)
    /// The row that keys move from, -1 for none. Announced after every change of the rows too.
    Q_PROPERTY(int currentRow READ currentRow NOTIFY currentRowChanged)
    /// The library has no folders. False as well at the start, until those of earlier runs would be known.
    Q_PROPERTY(bool isLibraryEmpty READ isLibraryEmpty NOTIFY isLibraryEmptyChanged)

public:
    /// `qorManager` outlives this object.
    explicit Sidebar(QorManage &qorManager, QObject *parent = nullptr);

    SidebarListModel *rows() { return &m_rows; }
    SidebarMenu *menu() { return &m_menu; }
    const SidebarSelection &selection() const { return m_selection; }
    bool isLibraryEmpty() const;
    int currentRow() const { return m_cursor.row(); }

    /// Chooses the row.
    Q_INVOKABLE void activate(int row);
    /// Chooses nothing.
    Q_INVOKABLE void deselect();
    Q_INVOKABLE void toggle(int row);
    /// The key's move, if it has one here: arrows, Home and End, and letters, which go to the next row that
    /// begins with them.
    Q_INVOKABLE bool pressKey(int key, const QString &text);
    /// Turns the menu to the row; false for one that has none.
    Q_INVOKABLE bool openMenu(int row);

Q_SIGNALS:
    void currentRowChanged();
    /// The user or the library went to the current row, if only once more: it has to show. Not after changes
    /// of the rows, which leave the user where they look.
    void currentRowChosen();
    void isLibraryEmptyChanged();

private:
    void followLibrary();
    void followSelection();
    bool type(const QString &text);
    FolderProgress progressOf(const FileUrl &folder) const;

    QorManage &m_qorManager;
    SidebarListModel m_rows;
    SidebarCursor m_cursor;
    SidebarSelection m_selection;
    SidebarCounts m_counts;
    SidebarMenu m_menu;
    QTimer m_progressRefresh;
    QTimer m_typingPause;
    QString m_typed;
};

} // namespace Qorvane
