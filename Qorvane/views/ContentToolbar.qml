import QtQuick
import QorvaneStyle
import QorvaneViews

/// The strip over the middle column: what is shown, the way back from a search, and the search field.
Item {
    id: toolbar

    required property ContentViewState viewState
    readonly property bool hasQuery: viewState.search.text !== ""

    /// The user is done with the field; the keys belong to the photographs again.
    signal leftForGrid

    function focusSearch() {
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }

    height: Theme.toolbarHeight

    ToolButton {
        id: backButton

        anchors.left: parent.left
        anchors.leftMargin: Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        text: qsTranslate("Qorvane", "Clear Search")
        iconName: "chevron.left"
        visible: toolbar.hasQuery
        onClicked: field.clear()
    }

    Label {
        anchors.left: toolbar.hasQuery ? backButton.right : parent.left
        anchors.leftMargin: toolbar.hasQuery ? Theme.unit : Theme.contentPadding + 4
        anchors.right: field.left
        anchors.rightMargin: Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        text: toolbar.viewState.title
        font.pixelSize: Theme.title3Size
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }

    SearchField {
        id: field

        objectName: "searchField"
        anchors.right: parent.right
        anchors.rightMargin: Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        placeholderText: qsTranslate("Qorvane", "Search Photos")
        onTextChanged: toolbar.viewState.search.text = text
        onAccepted: toolbar.leftForGrid()
        Keys.onDownPressed: toolbar.leftForGrid()

        Connections {
            target: toolbar.viewState.search

            function onTextChanged() {
                field.text = toolbar.viewState.search.text;
            }
        }
    }

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 1
        color: Theme.hairline
    }
}
