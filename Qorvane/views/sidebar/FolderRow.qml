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

    /// However deep a folder lies, so much is left to read its name by; the caption of a run goes first.
    readonly property int shortestName: 56
    readonly property double starRoom: isFavorite ? star.width + marks.spacing : 0
    readonly property double marksRoom: icon.width + starRoom + 4 + Theme.contentPadding // of a ring and a star
    readonly property double indent: Math.max(0, Math.min(depth * Theme.contentPadding, width - 30 - icon.width
                                              - Theme.sidebarIconGap - shortestName - marksRoom))
    readonly property double nameRoom: width - icon.x - icon.width - Theme.sidebarIconGap - Theme.contentPadding
                                       - starRoom - 4

    DisclosureButton {
        objectName: "disclosure"
        x: Theme.unit + 2 + row.indent
        anchors.verticalCenter: parent.verticalCenter
        isExpanded: row.isExpanded
        ink: row.isSelected ? Theme.accentInk : Theme.secondaryText
        visible: row.hasChildren
        onClicked: row.toggled()
    }

    Icon {
        id: icon

        x: row.isFlat ? Theme.sidebarIconX : 30 + row.indent
        anchors.verticalCenter: parent.verticalCenter
        name: "folder"
        size: 16
        color: row.isSelected ? Theme.accentInk : Theme.accent
    }

    Label {
        id: label

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
            hasCaption: row.nameRoom - fullWidth >= Math.min(label.implicitWidth, row.shortestName)
            visible: row.runState !== SidebarListModel.Idle
        }

        Icon {
            id: star

            objectName: "favoriteStar"
            anchors.verticalCenter: parent.verticalCenter
            name: "star.fill"
            size: 13
            color: row.isSelected ? Theme.accentInk : Theme.star
            visible: row.isFavorite
        }
    }
}
