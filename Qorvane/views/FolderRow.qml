import QtQuick
import QtQuick.Templates as T
import QorvaneStyle
import QorvaneViews

/// A folder of the library: its name, and how far its background run has come.
T.ItemDelegate {
    id: row

    required property ContentViewState viewState
    required property int index
    required property string name
    required property string itemId
    required property int depth
    required property bool hasChildren
    required property bool isExpanded
    required property bool isSelected
    required property int runState
    required property double progress
    required property string detail
    readonly property color ink: isSelected ? Theme.accentInk : Theme.text

    implicitHeight: Theme.rowHeight
    leftPadding: Theme.unit + 2 + depth * Theme.contentPadding
    rightPadding: Theme.contentPadding
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    text: name
    Accessible.role: Accessible.TreeItem
    Accessible.name: name
    Accessible.description: detail
    Accessible.selected: isSelected
    onClicked: viewState.selectSidebarItem(itemId)

    background: Rectangle {
        anchors.fill: parent
        anchors.leftMargin: Theme.unit
        anchors.rightMargin: Theme.unit
        radius: Theme.rowRadius
        color: row.isSelected ? Theme.accentFill : row.hovered ? Theme.hover : "transparent"
    }

    Item {
        anchors.fill: parent
        anchors.leftMargin: row.leftPadding
        anchors.rightMargin: row.rightPadding

        DisclosureButton {
            id: disclosure

            anchors.verticalCenter: parent.verticalCenter
            isExpanded: row.isExpanded
            ink: row.isSelected ? Theme.accentInk : Theme.secondaryText
            visible: row.hasChildren
            onClicked: row.viewState.folders.toggle(row.index)
        }

        Icon {
            id: folderIcon

            x: 20
            anchors.verticalCenter: parent.verticalCenter
            name: "folder"
            size: 16
            color: row.isSelected ? Theme.accentInk : Theme.accent
        }

        Label {
            anchors.left: folderIcon.right
            anchors.leftMargin: 6
            anchors.right: indicator.left
            anchors.rightMargin: indicator.width > 0 ? 6 : 0
            anchors.verticalCenter: parent.verticalCenter
            text: row.name
            color: row.ink
            Accessible.ignored: true
        }

        ProcessingIndicator {
            id: indicator

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            runState: row.runState
            progress: row.progress
            standsOnAccent: row.isSelected
        }
    }

    ToolTip {
        text: row.detail
        visible: row.hovered && row.detail !== ""
    }
}
