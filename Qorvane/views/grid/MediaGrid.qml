pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Window
import QtQuick.Templates as T
import QorvaneStyle
import QorvaneViews

/// Media as a scrolling grid of adaptive columns, with the selection, the keys and the wheel of both modes.
FocusScope {
    id: area

    required property MediaListModel media
    required property KeyboardFocus keys
    /// Distance between the tops of two rows of cells.
    required property int rowPitch
    required property Component delegate
    required property int pictureWidth
    required property int pictureHeight
    /// Left free on either side; the wheel works there too.
    property int sideMargin: 0
    /// With another value it is another grid, which begins at the top.
    property string identity
    property string gridName: ""
    readonly property double columnWidth: columns.columnWidth
    /// Where the picture begins in its cell.
    readonly property double pictureX: columns.centred(pictureWidth, columnWidth)
    readonly property alias hoveredCell: pointer.hoveredCell
    readonly property bool hasKeys: keys.isWithin(keys.holder, grid)

    /// A double click on a cell, which is the only one selected by then.
    signal opened
    signal menuRequested(string path, Item ground, point position)

    function isInView(top, height) {
        return top + height > grid.contentY && top < grid.contentY + grid.height;
    }

    function select(row, isCommandHeld) {
        media.click(row, isCommandHeld);
        forceActiveFocus();
    }

    function open(row) {
        media.selectAlone(row);
        opened();
    }

    function showRow(row) {
        const margin = Theme.contentPadding;
        const wanted = Scrolling.showing(row, columns.count, rowPitch, margin, grid.contentY, grid.height);
        scrolling.scrollTo(wanted, Theme.panel);
    }

    function showMenuOfSelection() {
        const row = media.firstSelectedRow;
        if (row < 0)
            return;
        scrolling.stop();
        grid.positionViewAtIndex(row, GridView.Contain);
        const cell = grid.itemAtIndex(row);
        menuRequested(media.path(row), cell, Qt.point(cell.width / 2, cell.height / 2));
    }

    function updateViewport() {
        // A hidden grid would put its files before those of the one in view.
        if (visible)
            media.setViewport(grid.contentY, grid.height, rowPitch, columns.count);
    }

    onIdentityChanged: scrolling.scrollTo(scrolling.lowest, 0)
    onVisibleChanged: visible ? updateViewport() : media.leaveViewport()
    // Who comes by keys sees where they are; who comes back from a menu or another window finds what they left.
    onHasKeysChanged: if (hasKeys && keys.isVisible && media.currentRow >= 0) showRow(media.currentRow)

    Connections {
        target: area.media

        function onUrlsChanged() {
            area.updateViewport();
        }
    }

    GridView {
        id: grid

        objectName: area.gridName
        anchors.fill: parent
        anchors.leftMargin: area.sideMargin
        anchors.rightMargin: area.sideMargin
        // A cell takes its gap with it; the last column's gap reaches into the padding.
        leftMargin: Theme.contentPadding
        topMargin: Theme.contentPadding
        bottomMargin: Theme.contentPadding
        cellWidth: columns.pitch
        cellHeight: area.rowPitch
        focus: true
        clip: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        currentIndex: area.media.currentRow
        highlightFollowsCurrentItem: false
        // Two rows above and below: enough that a slow scroll meets no empty cell, little enough to drop quickly.
        cacheBuffer: area.rowPitch * 2
        reuseItems: true
        model: area.media
        delegate: area.delegate
        Accessible.role: Accessible.List
        Accessible.name: qsTranslate("Qorvane", "Photos")
        T.ScrollBar.vertical: bar

        onContentYChanged: area.updateViewport()
        onHeightChanged: area.updateViewport()
        onCellWidthChanged: area.updateViewport()

        Keys.onPressed: event => {
            if (event.key === Qt.Key_Menu || event.key === Qt.Key_F10 && event.modifiers === Qt.ShiftModifier) {
                area.showMenuOfSelection();
                return;
            }
            const row = area.media.handleKey(event.key, columns.count);
            event.accepted = row >= 0;
            if (row >= 0)
                area.showRow(row);
        }
    }

    ScrollBar {
        id: bar

        objectName: area.gridName + "ScrollBar"
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.right: parent.right
    }

    CellPointer {
        id: pointer

        view: grid
        media: area.media
        bodyX: area.pictureX
        bodyWidth: area.pictureWidth
        onTapped: (row, isCommandHeld) => area.select(row, isCommandHeld)
        onDoubleTapped: row => area.open(row)
        onMenuRequested: (row, position) => area.menuRequested(area.media.path(row), grid, position)
    }

    SmoothScrolling {
        id: scrolling

        objectName: area.gridName + "Scrolling"
        view: grid
        bar: bar
        ground: area
    }

    GridColumns {
        id: columns

        width: grid.width - 2 * Theme.contentPadding
        // Of the grid's own screen: attached to what is no item, it would be the primary one's.
        devicePixelRatio: area.Screen.devicePixelRatio
    }
}
