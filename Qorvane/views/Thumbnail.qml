import QtQuick
import QorvaneStyle
import QorvaneViews

/// A file's thumbnail, cut to this item's size and round at the corners; until it is there, an empty cell.
Item {
    id: thumbnail

    required property string path
    /// A file without a thumbnail arrives as a single clear pixel.
    readonly property bool isLoaded: image.status === Image.Ready && image.implicitWidth > 1

    Rectangle {
        anchors.fill: parent
        radius: Theme.cellRadius
        color: Theme.emptyCell
        visible: !thumbnail.isLoaded || image.opacity < 1
    }

    BusyIndicator {
        id: indicator

        anchors.centerIn: parent
        running: !thumbnail.isLoaded
        visible: running

        // A cell that fills at once shall not flicker.
        SequentialAnimation on opacity {
            PropertyAction { value: 0 }
            PauseAnimation { duration: 300 }
            NumberAnimation { to: 1; duration: Theme.quick }
        }
    }

    Image {
        id: image

        anchors.fill: parent
        source: ThumbnailUrl.source(thumbnail.path, thumbnail.width, thumbnail.height, Theme.cellRadius)
        sourceSize.width: thumbnail.width
        sourceSize.height: thumbnail.height
        opacity: thumbnail.isLoaded ? 1 : 0

        Behavior on opacity {
            NumberAnimation { duration: Theme.quick; easing.type: Theme.easing }
        }
    }
}
