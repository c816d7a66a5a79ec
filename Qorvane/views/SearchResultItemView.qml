import QtQuick
import QorvaneStyle

/// A hit of a search: its picture over its file name.
MediaCell {
    id: cell

    height: 140
    pictureWidth: 180
    pictureHeight: 120
    emptyColor: Theme.emptyHit
    progressColor: "#FFFFFF"

    Label {
        objectName: "caption"
        y: cell.pictureHeight + 4
        width: cell.pictureWidth
        horizontalAlignment: Text.AlignHCenter
        elide: Text.ElideMiddle
        text: cell.name
        font.pixelSize: Theme.captionSize
        color: Theme.secondaryText
        Accessible.ignored: true
    }
}
