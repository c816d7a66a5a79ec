#pragma once

#include "views/folders/FolderAdding.h"
#include "views/grid/MediaActions.h"
#include "views/search/SearchController.h"
#include "views/selection/MediaSelection.h"
#include "views/selection/SelectedMedia.h"
#include "views/sidebar/Sidebar.h"
#include "views/style/KeyboardFocus.h"
#include "views/window/ColumnFocus.h"
#include "views/window/ContentPages.h"
#include "views/window/Sorting.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace Qorvane {

class QorManage;
class PictureQueue;

/// What the columns of the main window share: the selection, the search, the models over the library, and the
/// steps from a gesture to the library. Lives as long as its window. GUI thread.
class ContentViewState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window's owner makes it.")
    Q_PROPERTY(Qorvane::Sidebar *sidebar READ sidebar CONSTANT)
    Q_PROPERTY(Qorvane::ContentPages *pages READ pages CONSTANT)
    Q_PROPERTY(Qorvane::SearchController *search READ search CONSTANT)
    Q_PROPERTY(Qorvane::ColumnFocus *focus READ focus CONSTANT)
    Q_PROPERTY(Qorvane::KeyboardFocus *keyboardFocus READ keyboardFocus CONSTANT)
    Q_PROPERTY(Qorvane::SelectedMedia *selected READ selected CONSTANT)
    Q_PROPERTY(Qorvane::Sorting *sorting READ sorting CONSTANT)
    Q_PROPERTY(Qorvane::MediaActions *actions READ actions CONSTANT)
    Q_PROPERTY(Qorvane::FolderAdding *folderAdding READ folderAdding CONSTANT)
    /// The middle column shows one file instead of the grid.
    Q_PROPERTY(bool isDetailViewActive READ isDetailViewActive WRITE setDetailViewActive NOTIFY
                   isDetailViewActiveChanged)
    /// The right column is hidden.
    Q_PROPERTY(bool isInspectorCollapsed READ isInspectorCollapsed WRITE setInspectorCollapsed NOTIFY
                   isInspectorCollapsedChanged)

public:
    using Search = decltype(SearchSources::search);

    /// `qorManager` outlives this object. `search` finds photographs by text; `thumbnails` learns which cells
    /// are in view.
    ContentViewState(QorManage &qorManager, Search search, const std::shared_ptr<PictureQueue> &thumbnails,
                     QObject *parent = nullptr);

    Sidebar *sidebar() { return &m_sidebar; }
    ContentPages *pages() { return &m_pages; }
    SearchController *search() { return &m_search; }
    MediaActions *actions() { return &m_actions; }
    FolderAdding *folderAdding() { return &m_folderAdding; }
    MediaSelection &selection() { return m_selection; }
    ColumnFocus *focus() { return &m_focus; }
    KeyboardFocus *keyboardFocus() { return &m_keyboardFocus; }
    SelectedMedia *selected() { return &m_selected; }
    Sorting *sorting() { return &m_sorting; }
    bool isDetailViewActive() const { return m_isDetailViewActive; }
    /// Opening takes the keys to the middle column; closing gives them to the sidebar, and deselects
    /// everything.
    void setDetailViewActive(bool isActive);
    bool isInspectorCollapsed() const { return m_isInspectorCollapsed; }
    void setInspectorCollapsed(bool isCollapsed);

    /// The window is on screen: a moment later the keys go to the sidebar. (All columns show from the start.)
    void appear();

Q_SIGNALS:
    void isDetailViewActiveChanged();
    void isInspectorCollapsedChanged();

private:
    void reset();

    QorManage &m_qorManager;
    FolderAdding m_folderAdding;
    MediaSelection m_selection;
    Sidebar m_sidebar;
    MediaActions m_actions;
    SearchController m_search;
    ContentPages m_pages;
    ColumnFocus m_focus;
    KeyboardFocus m_keyboardFocus;
    SelectedMedia m_selected;
    Sorting m_sorting;
    bool m_isDetailViewActive = false;
    bool m_isInspectorCollapsed = false;
};

} // namespace Qorvane
