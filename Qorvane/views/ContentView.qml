import QtQuick
import QtQuick.Templates as T
import QorvaneStyle
import QorvaneViews

/// The main window.
T.ApplicationWindow {
    id: window

    required property ContentViewState viewState

    width: 1280
    height: 800
    minimumWidth: 1200
    minimumHeight: 800
    title: viewState.title === "" ? "Qorvane" : viewState.title
    color: Theme.window

    SidebarView {
        id: sidebar

        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: Theme.sidebarWidth
        viewState: window.viewState
    }

    ContentToolbar {
        id: toolbar

        anchors.left: sidebar.right
        anchors.right: parent.right
        viewState: window.viewState
        onLeftForGrid: results.forceActiveFocus()
    }

    SearchResultsView {
        id: results

        anchors.left: sidebar.right
        anchors.right: parent.right
        anchors.top: toolbar.bottom
        anchors.bottom: parent.bottom
        viewState: window.viewState
    }

    DropOverlay {
        anchors.fill: parent
        viewState: window.viewState
    }

    FolderDialogHost {
        viewState: window.viewState
    }

    // Ends the program with what it has in work, where closing the window only ends the window.
    Shortcut {
        sequence: "Ctrl+Q"
        context: Qt.ApplicationShortcut
        onActivated: Qt.quit()
    }

    Shortcut {
        sequence: "Ctrl+F"
        onActivated: toolbar.focusSearch()
    }
}
