import QtQuick
import QorvaneStyle
import QorvaneViews

/// The left column: the library's folders and the button that adds some.
Rectangle {
    id: sidebar

    required property ContentViewState viewState

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
        onClicked: sidebar.viewState.chooseFolders()
    }

    Label {
        id: header

        x: Theme.contentPadding
        y: Theme.toolbarHeight + Theme.unit
        text: qsTranslate("Qorvane", "照片库")
        font.pixelSize: Theme.captionSize
        font.weight: Font.DemiBold
        color: Theme.secondaryText
        visible: list.count > 0
        Accessible.role: Accessible.Heading
    }

    FolderList {
        id: list

        objectName: "folderList"
        anchors.fill: parent
        anchors.topMargin: header.y + header.height + 6
        anchors.bottomMargin: Theme.unit
        viewState: sidebar.viewState
    }

    Rectangle {
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: 1
        color: Theme.hairline
    }
}
