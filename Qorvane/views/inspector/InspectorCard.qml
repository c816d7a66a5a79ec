import QtQuick
import QorvaneStyle

/// A section of the inspector: a heading, and below it a card with what is declared inside.
Column {
    id: section

    required property string title
    default property alias content: rows.data

    spacing: 6

    Label {
        leftPadding: 4
        text: section.title
        font.pixelSize: Theme.captionSize
        font.weight: Font.DemiBold
        color: Theme.secondaryText
        Accessible.role: Accessible.Heading
    }

    Rectangle {
        width: parent.width
        height: rows.height + 2 * Theme.cardPadding
        radius: Theme.cardRadius
        color: Theme.card

        Column {
            id: rows

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: Theme.cardPadding
            spacing: 4
        }
    }
}
