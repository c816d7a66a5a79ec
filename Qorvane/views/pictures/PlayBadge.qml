import QtQuick
import QorvaneStyle

/// The mark of a video over its open preview.
Rectangle {
    width: Theme.openPlayDiscSize
    height: Theme.openPlayDiscSize
    radius: width / 2
    color: Theme.badgeDisc

    Icon {
        anchors.centerIn: parent
        name: "play.circle.fill"
        size: Theme.pageIconSize
        color: Theme.inkOnPicture
    }
}
