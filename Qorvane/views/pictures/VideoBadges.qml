pragma ComponentBehavior: Bound

import QtQuick
import QorvaneStyle

/// The two marks of a video, laid over its picture.
Item {
    Rectangle {
        objectName: "videoWord"
        x: Theme.badgeMargin
        y: Theme.badgeMargin
        width: word.width + 2 * Theme.badgePadding
        height: word.height + 4
        radius: Theme.badgeRadius
        color: Theme.videoBadge

        Label {
            id: word

            anchors.centerIn: parent
            text: qsTranslate("Qorvane", "VIDEO")
            font.pixelSize: Theme.caption2Size
            font.bold: true
            color: Theme.inkOnPicture
        }
    }

    // The disc's shadow, as rings around it: the software scene graph has no blur. Each has the share that a blur of
    // radius 2 leaves of the shadow so far from the edge.
    Repeater {
        model: [0.4, 0.23, 0.1]

        Rectangle {
            required property int index
            required property real modelData

            anchors.fill: disc
            anchors.margins: -1 - index
            radius: width / 2
            color: "transparent"
            border.color: Qt.alpha(Theme.badgeShadow, Theme.badgeShadow.a * modelData)
        }
    }

    Rectangle {
        id: disc

        objectName: "videoDisc"
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: Theme.unit
        width: Theme.playDiscSize
        height: Theme.playDiscSize
        radius: width / 2
        color: Theme.badgeDisc

        Icon {
            objectName: "playSymbol"
            anchors.centerIn: parent
            name: "play.circle.fill"
            size: Theme.titleSize
            color: Theme.inkOnPicture
        }
    }
}
