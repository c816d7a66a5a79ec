import QtQuick
import QorvaneStyle

/// A tag in the sidebar, and how many files carry it, in brackets right behind it.
Item {
    id: row

    required property string name
    required property string count
    required property bool isSelected

    Icon {
        id: icon

        x: Theme.sidebarIconX
        anchors.verticalCenter: parent.verticalCenter
        name: "tag"
        size: 16
        color: row.isSelected ? Theme.accentInk : Theme.accent
    }

    Label {
        id: name

        x: icon.x + icon.width + Theme.sidebarIconGap
        width: Math.min(implicitWidth, row.width - Theme.contentPadding - count.width - x)
        anchors.verticalCenter: parent.verticalCenter
        text: row.name
        color: row.isSelected ? Theme.accentInk : Theme.text
        Accessible.ignored: true
    }

    Label {
        id: count

        objectName: "count"
        x: name.x + name.width
        anchors.verticalCenter: parent.verticalCenter
        text: row.count === "" ? "" : "(" + row.count + ")"
        color: row.isSelected ? Theme.accentInk : Theme.secondaryText
        Accessible.ignored: true
    }
}
