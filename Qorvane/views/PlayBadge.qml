import QtQuick
import QorvaneStyle

/// The mark of a video over its open preview.
Rectangle {
    width: 72
    height: 72
    radius: 36
    color: "#99000000"

    Icon {
        anchors.centerIn: parent
        name: "play.circle.fill"
        size: 48
        color: "#FFFFFF"
    }
}
