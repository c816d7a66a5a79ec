#pragma once

#include "views/sidebar/SidebarRow.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace Qorvane {

class QorManage;

/// What the context menu of a sidebar row offers, and does. Keeps the row it was opened for, whatever moves
/// meanwhile. GUI thread.
class SidebarMenu : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(bool isFolder READ isFolder NOTIFY rowChanged)
    Q_PROPERTY(bool offersAddToFavorites READ offersAddToFavorites NOTIFY rowChanged)
    Q_PROPERTY(bool offersRemoveFromFavorites READ offersRemoveFromFavorites NOTIFY rowChanged)
    Q_PROPERTY(bool offersDelete READ offersDelete NOTIFY rowChanged)

public:
    /// Opens a folder in the desktop's file manager; returns at once.
    using FolderOpener = std::function<void(const FileUrl &)>;

    /// `qorManager` outlives this object.
    SidebarMenu(QorManage &qorManager, FolderOpener openFolder, QObject *parent = nullptr);

    /// Turns to a row; false for one without a menu.
    bool openFor(const SidebarRow &row);

    bool isFolder() const { return m_row.isFolder(); }
    bool offersAddToFavorites() const;
    bool offersRemoveFromFavorites() const;
    /// A folder leaves the library, its files stay; a tag leaves all files.
    bool offersDelete() const;

    Q_INVOKABLE void addToFavorites();
    Q_INVOKABLE void removeFromFavorites();
    Q_INVOKABLE void openInFinder();
    /// Not asked again: neither takes a file away.
    Q_INVOKABLE void remove();

Q_SIGNALS:
    void rowChanged();

private:
    QorManage &m_qorManager;
    const FolderOpener m_openFolder;
    SidebarRow m_row;
};

} // namespace Qorvane
