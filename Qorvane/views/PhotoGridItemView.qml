import QtQuick
import QorvaneStyle

/// A cell of the photo grid.
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

    Thumbnail {
        id: thumbnail

        objectName: "thumbnail"
        anchors.horizontalCenter: parent.horizontalCenter
        width: 200
        height: 200
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

        TapHandler {
            onTapped: cell.clicked((point.modifiers & Qt.ControlModifier) !== 0)
        }
    }
}
