import QtQuick
import QorvaneStyle

/// A hit of a search: its picture over its file name.
MediaCell {
    id: cell

    height: Theme.hitHeight
    pictureWidth: Theme.hitWidth
    pictureHeight: Theme.hitPictureHeight
    emptyColor: Theme.emptyHit
    progressColor: Theme.inkOnPicture

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
