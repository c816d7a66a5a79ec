import QtQuick
import QorvaneStyle

/// A hit of a search: its picture over its file name.
Item {
    id: cell

    required property int index
    required property string path
    required property string name
    required property bool isVideo
    required property bool isSelected

    /// The picture was clicked, with or without the command key.
    signal clicked(bool isCommandHeld)

    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.selectable: true
    Accessible.selected: isSelected

    Item {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 180
        height: parent.height

        Thumbnail {
            id: thumbnail

            width: 180
            height: 120
            path: cell.path

            VideoBadges {
                anchors.fill: parent
                visible: cell.isVideo
            }

            Rectangle {
                anchors.fill: parent
                color: "transparent"
                radius: Theme.cellRadius
                border.width: Theme.selectionStroke
                border.color: Theme.accent
                visible: cell.isSelected
            }
        }

        Label {
            anchors.top: thumbnail.bottom
            anchors.topMargin: 4
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideMiddle
            text: cell.name
            font.pixelSize: Theme.captionSize
            color: Theme.secondaryText
            Accessible.ignored: true
        }

        TapHandler {
            onTapped: cell.clicked((point.modifiers & Qt.ControlModifier) !== 0)
        }
    }
}
