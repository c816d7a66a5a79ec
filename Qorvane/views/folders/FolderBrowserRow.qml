import QtQuick
import QorvaneStyle

/// A folder that can be chosen.
Item {
    id: row

    required property int index
    required property string name
    required property bool isSelected

    signal clicked(int index, int modifiers)
    signal opened(int index)

    implicitHeight: Theme.rowHeight
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.selectable: true
    Accessible.selected: isSelected
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.onPressAction: row.clicked(row.index, Qt.NoModifier)

    Rectangle {
        anchors.fill: parent
        radius: Theme.rowRadius
        color: row.isSelected ? Theme.accentFill : hover.hovered ? Theme.hover : "transparent"
        // Where the keys are, for a row that they took out of the selection.
        border.width: row.activeFocus && !row.isSelected ? Theme.focusStroke : 0
        border.color: Theme.accent
    }

    Icon {
        id: icon

        x: Theme.unit
        anchors.verticalCenter: parent.verticalCenter
        name: "folder"
        size: 16
        color: row.isSelected ? Theme.accentInk : Theme.accent
    }

    Label {
        anchors.left: icon.right
        anchors.leftMargin: Theme.unit
        anchors.right: parent.right
        anchors.rightMargin: Theme.unit
        anchors.verticalCenter: parent.verticalCenter
        text: row.name
        color: row.isSelected ? Theme.accentInk : Theme.text
        Accessible.ignored: true
    }

    HoverHandler {
        id: hover
    }

    TapHandler {
        onTapped: row.clicked(row.index, point.modifiers & (Qt.ControlModifier | Qt.ShiftModifier))
        onDoubleTapped: row.opened(row.index)
    }
}
