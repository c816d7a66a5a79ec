import QtQuick
import QorvaneViews

/// The pointer over the cells of a grid: one set of handlers for all of them, since each cell would have to make its
/// own while the grid scrolls. Positions are the view's.
Item {
    id: pointer

    required property GridView view
    required property MediaListModel media
    /// What of a cell the pointer reaches: the width of its picture, this far from its left edge. Between is nothing.
    required property double bodyX
    required property double bodyWidth
    /// The cell under the pointer; null for none.
    property Item hoveredCell: null

    signal tapped(int row, bool isCommandHeld)
    signal doubleTapped(int row)
    signal menuRequested(int row, point position)

    function cellAt(position: point): Item {
        const x = position.x + view.contentX;
        const y = position.y + view.contentY;
        const cell = view.itemAt(x, y);
        if (cell === null)
            return null;
        const left = cell.x + bodyX;
        return x >= left && x < left + bodyWidth && y < cell.y + cell.height ? cell : null;
    }

    /// -1 beside the cells.
    function rowAt(position: point): int {
        // A list that has just changed is laid out with the next frame only.
        view.forceLayout();
        return cellAt(position) === null ? -1 : view.indexAt(position.x + view.contentX, position.y + view.contentY);
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

    CellTaps {
        id: taps
    }

    TapHandler {
        onPressedChanged: if (pressed) taps.press(pointer.media.path(pointer.rowAt(point.pressPosition)))
        onTapped: eventPoint => {
            const row = pointer.rowAt(eventPoint.pressPosition);
            const tap = taps.tap(pointer.media.path(row), tapCount);
            // Of a double click the first one selects.
            if (tap === CellTaps.Single)
                pointer.tapped(row, (point.modifiers & Qt.ControlModifier) !== 0);
            else if (tap === CellTaps.Double)
                pointer.doubleTapped(row);
        }
    }

    TapHandler {
        // A finger has no buttons, and would open the menu with every tap.
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad | PointerDevice.Stylus
        acceptedButtons: Qt.RightButton
        onTapped: eventPoint => {
            const row = pointer.rowAt(eventPoint.pressPosition);
            if (row >= 0)
                pointer.menuRequested(row, eventPoint.pressPosition);
        }
    }
}
