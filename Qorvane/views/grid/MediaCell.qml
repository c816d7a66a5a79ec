import QtQuick
import QorvaneViews

/// A cell of a grid: a file's picture with its marks. What stands below the picture is the cell's own; the gestures
/// on it are CellPointer's. Each scroll makes many, so it holds as few objects as it can.
Item {
    id: cell

    required property int index
    required property string path
    required property string name
    required property bool isVideo
    required property bool isSelected
    required property int revision
    required property MediaGrid grid
    property alias emptyColor: thumbnail.emptyColor
    property alias progressColor: thumbnail.progressColor
    readonly property bool isHovered: grid.hoveredCell === cell
    readonly property bool hasFocusRing: activeFocus && grid.keys.isVisible
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

    Thumbnail {
        id: thumbnail

        objectName: "thumbnail"
        x: cell.grid.pictureX
        width: cell.grid.pictureWidth
        height: cell.grid.pictureHeight
        path: cell.path
        revision: cell.revision
        // Asked for while it matters only: it changes with every step of a scroll.
        isInView: isWaiting && !cell.isPooled && cell.grid.isInView(cell.y, cell.height)

        // For the few that have one.
        Loader {
            anchors.fill: parent
            active: cell.isVideo || cell.isSelected || cell.isHovered || cell.hasFocusRing
            sourceComponent: CellMarks {}
            onLoaded: {
                const marks = item as CellMarks;
                marks.isVideo = Qt.binding(() => cell.isVideo);
                marks.isHovered = Qt.binding(() => cell.isHovered);
                marks.isSelected = Qt.binding(() => cell.isSelected);
                marks.hasFocusRing = Qt.binding(() => cell.hasFocusRing);
            }
        }
    }
}
