import QtQuick
import QorvaneStyle

/// A rating in the sidebar: its stars, and how many files have it.
Row {
    id: row

    required property string stars
    required property string count
    required property bool isSelected

    leftPadding: 24
    spacing: Theme.unit

    Label {
        anchors.verticalCenter: parent.verticalCenter
        text: row.stars
        font.pixelSize: Theme.subheadlineSize
        font.letterSpacing: 2
        color: row.isSelected ? Theme.accentInk : Theme.text
        Accessible.ignored: true
    }

    Label {
        objectName: "count"
        anchors.verticalCenter: parent.verticalCenter
        text: row.count
        color: row.isSelected ? Theme.accentInk : Theme.secondaryText
        Accessible.ignored: true
    }
}
