import QtQuick
import QorvaneStyle
import QorvaneViews

/// The left column: favourites, the library's folders, ratings and tags, and the button that adds folders.
Rectangle {
    id: sidebar

    required property Sidebar model
    required property KeyboardFocus keys

    signal addFolderRequested

    /// Gives the keys to the list.
    function takeFocus() {
        list.forceActiveFocus();
    }

    color: Theme.sidebar

    ToolButton {
        objectName: "addFolderButton"
        anchors.right: parent.right
        anchors.rightMargin: Theme.unit
        anchors.top: parent.top
        anchors.topMargin: (Theme.toolbarHeight - height) / 2
        text: qsTranslate("Qorvane", "Add Folder")
        iconName: "folder.badge.plus"
        onClicked: sidebar.addFolderRequested()
    }

    SidebarList {
        id: list

        objectName: "sidebarList"
        anchors.fill: parent
        anchors.topMargin: Theme.toolbarHeight
        sidebar: sidebar.model
        keys: sidebar.keys
    }

    Rectangle {
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: 1
        color: Theme.hairline
    }
}
