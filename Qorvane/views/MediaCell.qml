import QtQuick
import QorvaneStyle
import QorvaneViews

/// A cell of a grid: a file's picture with its marks, and the gestures on it. What stands below the picture is the
/// cell's own.
Item {
    id: cell

    required property int index
    required property string path
    required property string name
    required property bool isVideo
    required property bool isSelected
    required property int revision
    required property MediaGrid grid
    required property int pictureWidth
    required property int pictureHeight
    property alias emptyColor: thumbnail.emptyColor
    property alias progressColor: thumbnail.progressColor
    default property alias content: body.data
    property bool isPooled: false

    width: grid.columnWidth
    GridView.onPooled: isPooled = true
    GridView.onReused: isPooled = false
    Accessible.role: Accessible.ListItem
    Accessible.name: isVideo ? qsTranslate("Qorvane", "%1, video").arg(name) : name
    Accessible.selectable: true
    Accessible.selected: isSelected
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.onPressAction: grid.select(index, false)

    Item {
        id: body

        x: cell.grid.centred(cell.pictureWidth)
        width: cell.pictureWidth
        height: cell.height

        Thumbnail {
            id: thumbnail

            objectName: "thumbnail"
            width: cell.pictureWidth
            height: cell.pictureHeight
            path: cell.path
            revision: cell.revision
            // Asked for while it matters only: it changes with every step of a scroll.
            isInView: isWaiting && !cell.isPooled && cell.grid.isInView(cell.y, cell.height)
        }

        Loader {
            anchors.fill: thumbnail
            active: cell.isVideo
            sourceComponent: VideoBadges {}
        }

        Rectangle {
            anchors.fill: thumbnail
            radius: Theme.cellRadius
            color: Theme.hover
            visible: hover.hovered
        }

        Rectangle {
            objectName: "selectionRing"
            anchors.fill: thumbnail
            color: "transparent"
            radius: Theme.cellRadius
            border.width: Theme.selectionStroke
            border.color: Theme.accent
            visible: cell.isSelected
        }

        // Around the picture, where it is seen beside the ring of a selected one too.
        Loader {
            anchors.fill: thumbnail
            anchors.margins: -2 * Theme.focusStroke
            active: cell.activeFocus && cell.grid.keys.isVisible
            sourceComponent: Rectangle {
                objectName: "focusRing"
                color: "transparent"
                radius: Theme.cellRadius + 2 * Theme.focusStroke
                border.width: Theme.focusStroke
                border.color: Theme.accent
            }
        }

        HoverHandler {
            id: hover

            acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad | PointerDevice.Stylus
        }

        TapHandler {
            // Of a double click the first of its two.
            onSingleTapped: cell.grid.select(cell.index, (point.modifiers & Qt.ControlModifier) !== 0)
            onDoubleTapped: cell.grid.open(cell.index)
        }

        TapHandler {
            acceptedButtons: Qt.RightButton
            onTapped: eventPoint => cell.grid.menuRequested(cell.path, body, eventPoint.position)
        }
    }
}
