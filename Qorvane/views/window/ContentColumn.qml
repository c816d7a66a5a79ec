import QtQuick
import QtQuick.Window
import QorvaneViews

/// The middle column: the photographs of what is selected, or one of them.
FocusScope {
    id: column

    required property ContentViewState viewState
    /// Left free on either side where the column is wider than its content may be.
    property int sideMargin: 0
    readonly property bool isDetailViewActive: viewState.isDetailViewActive

    SearchResultsView {
        anchors.fill: parent
        sideMargin: column.sideMargin
        focus: !column.isDetailViewActive
        visible: !column.isDetailViewActive
        pages: column.viewState.pages
        sorting: column.viewState.sorting
        search: column.viewState.search
        actions: column.viewState.actions
        keys: column.viewState.keyboardFocus
        isLibraryEmpty: column.viewState.sidebar.isLibraryEmpty
        onOpened: column.viewState.isDetailViewActive = true
        onAddFolderRequested: column.viewState.folderAdding.choose()
    }

    InlineDetailView {
        objectName: "inlineDetailView"
        anchors.fill: parent
        anchors.leftMargin: column.sideMargin
        anchors.rightMargin: column.sideMargin
        focus: column.isDetailViewActive
        visible: column.isDetailViewActive
        media: column.viewState.selected
        isOpen: column.isDetailViewActive
        decodedSize: Math.max(ColumnWidths.WidestContent, Screen.height)
        onCloseRequested: column.viewState.isDetailViewActive = false
    }
}
