import QtQuick
import QorvaneStyle

/// The two marks of a video, laid over its picture.
Item {
    Rectangle {
        objectName: "videoWord"
        x: 6
        y: 6
        width: word.width + 12
        height: word.height + 4
        radius: 4
        color: Theme.videoBadge

        Label {
            id: word

            anchors.centerIn: parent
            text: qsTranslate("Qorvane", "VIDEO")
            font.pixelSize: Theme.caption2Size
            font.bold: true
            color: "#FFFFFF"
        }
    }

    // A shadow of radius 2: what it would blur is drawn as two rings that fade.
    Rectangle {
        anchors.centerIn: disc
        width: 44
        height: 44
        radius: 22
        color: "#33000000"
    }

    Rectangle {
        anchors.centerIn: disc
        width: 42
        height: 42
        radius: 21
        color: "#33000000"
    }

    Rectangle {
        id: disc

        objectName: "videoDisc"
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: Theme.unit
        width: 40
        height: 40
        radius: 20
        color: "#99000000"

        Icon {
            anchors.centerIn: parent
            name: "play.circle.fill"
            size: 26
            color: "#FFFFFF"
        }
    }
}
