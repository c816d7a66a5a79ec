import QtQuick
import QorvaneStyle
import QorvaneViews

/// A folder in the sidebar: its name, how far its background run has come, and a star for a favourite.
Item {
    id: row

    required property string name
    required property bool isFlat
    required property int depth
    required property bool hasChildren
    required property bool isExpanded
    /// Everything in it is drawn in one ink.
    required property bool isSelected
    required property bool isFavorite
    required property int runState
    required property double progress
    required property string percent
    required property bool isInView

    signal toggled

    DisclosureButton {
        objectName: "disclosure"
        x: Theme.unit + 2 + row.depth * Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        isExpanded: row.isExpanded
        ink: row.isSelected ? Theme.accentInk : Theme.secondaryText
        visible: row.hasChildren
        onClicked: row.toggled()
    }

    Icon {
        id: icon

        x: row.isFlat ? Theme.sidebarIconX : 30 + row.depth * Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        name: "folder"
        size: 16
        color: row.isSelected ? Theme.accentInk : Theme.accent
    }

    Label {
        anchors.left: icon.right
        anchors.leftMargin: Theme.sidebarIconGap
        anchors.right: marks.left
        anchors.rightMargin: marks.width > 0 ? 4 : 0
        anchors.verticalCenter: parent.verticalCenter
        text: row.name
        color: row.isSelected ? Theme.accentInk : Theme.text
        Accessible.ignored: true
    }

    // The name gives way to these.
    Row {
        id: marks

        anchors.right: parent.right
        anchors.rightMargin: Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4

        ProcessingIndicator {
            anchors.verticalCenter: parent.verticalCenter
            runState: row.runState
            progress: row.progress
            percent: row.percent
            isInView: row.isInView
            standsOnAccent: row.isSelected
            visible: width > 0
        }

        Icon {
            objectName: "favoriteStar"
            anchors.verticalCenter: parent.verticalCenter
            name: "star.fill"
            size: 13
            color: row.isSelected ? Theme.accentInk : Theme.star
            visible: row.isFavorite
        }
    }
}
