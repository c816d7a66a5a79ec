import QtQuick
import QtQuick.Templates as T
import QorvaneStyle
import QorvaneViews

/// Media as a scrolling grid of adaptive columns, with the selection and the arrow keys of both modes.
GridView {
    id: grid

    required property MediaListModel media
    /// Distance between the tops of two rows of cells.
    required property int rowPitch
    readonly property int columnWidth: columns.columnWidth

    function select(row, isCommandHeld) {
        media.click(row, isCommandHeld);
        forceActiveFocus();
    }

    function updateViewport() {
        media.setViewport(contentY, height, rowPitch, columns.count);
    }

    // A cell takes its gap with it; the last column's gap reaches into the padding.
    leftMargin: Theme.contentPadding
    topMargin: Theme.contentPadding
    bottomMargin: Theme.contentPadding
    cellWidth: columns.pitch
    cellHeight: rowPitch
    clip: true
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: false
    highlightFollowsCurrentItem: false
    // Two rows above and below: enough that a slow scroll meets no empty cell, little enough to drop quickly.
    cacheBuffer: rowPitch * 2
    reuseItems: true
    model: media
    Accessible.role: Accessible.List
    Accessible.name: qsTranslate("Qorvane", "Photos")
    T.ScrollBar.vertical: ScrollBar {}

    onContentYChanged: updateViewport()
    onHeightChanged: updateViewport()
    onCountChanged: updateViewport()
    onCellWidthChanged: updateViewport()
    onVisibleChanged: updateViewport()

    Keys.onPressed: event => {
        const row = grid.media.handleKey(event.key, columns.count);
        event.accepted = row >= 0;
        if (row >= 0)
            grid.positionViewAtIndex(row, GridView.Contain);
    }

    GridColumns {
        id: columns

        width: grid.width - 2 * Theme.contentPadding
    }
}
