import QtQuick
import QorvaneStyle
import QorvaneViews

/// A hit of a search: its picture over its file name.
MediaCell {
    id: cell

    height: Theme.hitHeight
    emptyColor: Theme.emptyHit
    progressColor: Theme.inkOnPicture

    Label {
        objectName: "caption"
        x: cell.grid.pictureX
        y: cell.grid.pictureHeight + 4
        width: cell.grid.pictureWidth
        horizontalAlignment: Text.AlignHCenter
        elide: Text.ElideMiddle
        text: cell.name
        font.pixelSize: Theme.captionSize
        color: Theme.secondaryText
        Accessible.ignored: true
    }
}
