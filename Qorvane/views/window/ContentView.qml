import QtQuick
import QtQuick.Templates as T
import QorvaneStyle
import QorvaneViews

/// The main window.
T.ApplicationWindow {
    id: window

    required property ContentViewState viewState
    readonly property Item popups: T.Overlay.overlay
    // Every modal popup takes the keys, and a tooltip doesn't.
    readonly property bool isUnderPopup: viewState.keyboardFocus.isWithin(activeFocusItem, popups)

    function toggleInspector() {
        viewState.isInspectorCollapsed = !viewState.isInspectorCollapsed;
    }

    width: 1280
    height: 800
    minimumWidth: 1200
    minimumHeight: 800
    title: viewState.pages.title === "" ? "Qorvane" : viewState.pages.title
    color: Theme.window
    // The controls would ask the desktop, past the application.
    font.family: Application.font.family
    Component.onCompleted: viewState.keyboardFocus.follow(window, popups)

    ColumnWidths {
        id: widths

        windowWidth: window.width
        inspectorShare: window.viewState.isInspectorCollapsed ? 0 : 1

        Behavior on inspectorShare {
            NumberAnimation { duration: Theme.panel; easing.type: Theme.easing }
        }
    }

    FocusScope {
        id: sidebarColumn

        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: widths.sidebar
        onActiveFocusChanged: if (activeFocus) window.viewState.focus.noteSidebar()

        SidebarView {
            id: sidebar

            objectName: "sidebar"
            anchors.fill: parent
            model: window.viewState.sidebar
            keys: window.viewState.keyboardFocus
            onAddFolderRequested: window.viewState.folderAdding.choose()
        }
    }

    ContentToolbar {
        id: toolbar

        anchors.left: sidebarColumn.right
        width: widths.middle
        sorting: window.viewState.sorting
        search: window.viewState.search
        columns: window.viewState.focus
        title: isDetailViewActive ? window.viewState.selected.name : window.viewState.pages.title
        isDetailViewActive: window.viewState.isDetailViewActive
        isInspectorCollapsed: window.viewState.isInspectorCollapsed
        onBackRequested: window.viewState.isDetailViewActive = false
        onInspectorToggled: window.toggleInspector()
    }

    ContentColumn {
        id: content

        objectName: "contentColumn"
        anchors.left: sidebarColumn.right
        width: widths.middle
        anchors.top: toolbar.bottom
        anchors.bottom: parent.bottom
        sideMargin: widths.contentMargin
        viewState: window.viewState
        onActiveFocusChanged: if (activeFocus) window.viewState.focus.noteDetail()
    }

    Item {
        objectName: "inspectorColumn"
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.right: parent.right
        width: widths.inspector
        visible: width > 0
        clip: true

        InspectorView {
            objectName: "inspector"
            anchors.top: parent.top
            anchors.bottom: parent.bottom
            width: widths.fullInspector
            selected: window.viewState.selected
        }
    }

    ColumnSplitter {
        objectName: "sidebarSplitter"
        label: qsTranslate("Qorvane", "Sidebar Width")
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.horizontalCenter: sidebarColumn.right
        onMoved: distance => widths.moveSidebarEdge(distance)
        onReset: widths.resetSidebar()
    }

    ColumnSplitter {
        objectName: "inspectorSplitter"
        label: qsTranslate("Qorvane", "Info Panel Width")
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.horizontalCenter: content.right
        visible: widths.inspector > 0
        // Out of sight it has no use for the keys.
        enabled: visible
        onMoved: distance => widths.moveInspectorEdge(distance)
        onReset: widths.resetInspector()
    }

    DropOverlay {
        anchors.fill: parent
        folderAdding: window.viewState.folderAdding
    }

    FolderDialogHost {
        folderAdding: window.viewState.folderAdding
    }

    Connections {
        target: window.viewState.focus

        function onSidebarWanted() {
            sidebar.takeFocus();
        }
        function onDetailWanted() {
            content.forceActiveFocus();
        }
    }

    // Ends the program with what it has in work, where closing the window only ends the window.
    Shortcut {
        sequence: "Ctrl+Q"
        context: Qt.ApplicationShortcut
        onActivated: Qt.quit()
    }

    Shortcut {
        sequence: "Ctrl+F"
        enabled: !window.isUnderPopup
        onActivated: toolbar.focusSearch()
    }

    Shortcut {
        sequence: "Ctrl+I"
        enabled: !window.isUnderPopup
        onActivated: window.toggleInspector()
    }
}
