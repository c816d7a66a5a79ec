import QtQuick

/// The pointer over the cells of a grid: one set of handlers for all of them, since each cell would have to make its
/// own while the grid scrolls. Positions are those of the view's contents.
Item {
    id: pointer

    required property GridView view
    /// What of a cell the pointer reaches: the width of its picture, this far from its left edge. Between is nothing.
    required property double bodyX
    required property double bodyWidth
    /// -1 when the pointer is on no cell.
    readonly property int hoveredRow: hover.hovered ? rowAt(hover.point.position) : -1
    property int tappedRow: -1

    signal tapped(int row, bool isCommandHeld)
    signal doubleTapped(int row)
    signal menuRequested(int row, point position)

    function rowAt(position) {
        const cell = view.itemAt(position.x, position.y);
        if (cell === null)
            return -1;
        const left = cell.x + bodyX;
        const isInBody = position.x >= left && position.x < left + bodyWidth && position.y < cell.y + cell.height;
        return isInBody ? view.indexAt(position.x, position.y) : -1;
    }

    HoverHandler {
        id: hover

        parent: pointer.view.contentItem
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad | PointerDevice.Stylus
    }

    TapHandler {
        parent: pointer.view.contentItem
        onTapped: eventPoint => {
            const row = pointer.rowAt(eventPoint.pressPosition);
            // Two taps in a row on two cells, where the list moved in between, are no double tap.
            const isNew = row !== pointer.tappedRow;
            pointer.tappedRow = row;
            if (row < 0)
                return;
            if (isNew || tapCount === 1)
                pointer.tapped(row, (point.modifiers & Qt.ControlModifier) !== 0);
            else if (tapCount === 2)
                pointer.doubleTapped(row);
        }
    }

    TapHandler {
        parent: pointer.view.contentItem
        acceptedButtons: Qt.RightButton
        onTapped: eventPoint => {
            const row = pointer.rowAt(eventPoint.pressPosition);
            if (row >= 0)
                pointer.menuRequested(row, eventPoint.pressPosition);
        }
    }
}
