import QtQuick

/// The pointer over the cells of a grid: one set of handlers for all of them, since each cell would have to make its
/// own while the grid scrolls. Positions are the view's.
Item {
    id: pointer

    required property GridView view
    /// What of a cell the pointer reaches: the width of its picture, this far from its left edge. Between is nothing.
    required property double bodyX
    required property double bodyWidth
    /// The cell under the pointer; null for none.
    property Item hoveredCell: null

    // Of the last press and of the taps that led to it, of which two on one cell are a double tap.
    property Item pressedCell: null
    property Item tappedCell: null
    property int taps: 0

    signal tapped(int row, bool isCommandHeld)
    signal doubleTapped(int row)
    signal menuRequested(int row, point position)

    function cellAt(position) {
        const x = position.x + view.contentX;
        const y = position.y + view.contentY;
        const cell = view.itemAt(x, y);
        if (cell === null)
            return null;
        const left = cell.x + bodyX;
        return x >= left && x < left + bodyWidth && y < cell.y + cell.height ? cell : null;
    }

    function rowAt(position) {
        return view.indexAt(position.x + view.contentX, position.y + view.contentY);
    }

    /// A list that has just changed is laid out with the next frame only.
    function settledCellAt(position) {
        view.forceLayout();
        return cellAt(position);
    }

    function updateHover() {
        hoveredCell = hover.hovered ? cellAt(hover.point.position) : null;
    }

    // Beside the view's contents, which begin and end elsewhere when files above those in view have gone.
    parent: view
    anchors.fill: parent

    Connections {
        target: pointer.view

        function onContentYChanged() {
            pointer.updateHover();
        }
        function onCountChanged() {
            settling.restart();
        }
        function onCellWidthChanged() {
            settling.restart();
        }
    }

    // The view takes such a change in its own time.
    Timer {
        id: settling

        interval: 0
        onTriggered: {
            pointer.view.forceLayout();
            pointer.updateHover();
        }
    }

    HoverHandler {
        id: hover

        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad | PointerDevice.Stylus
        onHoveredChanged: pointer.updateHover()
        onPointChanged: pointer.updateHover()
    }

    TapHandler {
        onPressedChanged: if (pressed) pointer.pressedCell = pointer.settledCellAt(point.pressPosition)
        onTapped: eventPoint => {
            const cell = pointer.settledCellAt(eventPoint.pressPosition);
            // What came under the pointer since the press isn't meant.
            if (cell === null || cell !== pointer.pressedCell)
                return;
            pointer.taps = cell !== pointer.tappedCell || tapCount === 1 ? 1 : pointer.taps + 1;
            pointer.tappedCell = cell;
            const row = pointer.rowAt(eventPoint.pressPosition);
            // Of a double click the first one selects.
            if (pointer.taps === 1)
                pointer.tapped(row, (point.modifiers & Qt.ControlModifier) !== 0);
            else if (pointer.taps === 2)
                pointer.doubleTapped(row);
        }
    }

    TapHandler {
        // A finger has no buttons, and would open the menu with every tap.
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad | PointerDevice.Stylus
        acceptedButtons: Qt.RightButton
        onTapped: eventPoint => {
            if (pointer.settledCellAt(eventPoint.pressPosition) !== null)
                pointer.menuRequested(pointer.rowAt(eventPoint.pressPosition), eventPoint.pressPosition);
        }
    }
}
