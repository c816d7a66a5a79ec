import QtQuick
import QorvaneStyle
import QorvaneViews

/// The strip over the middle column: the way back from an open file, the order of the photographs, what is shown, the
/// inspector's switch and the search field.
Item {
    id: toolbar

    required property ContentViewState viewState
    readonly property bool isDetailViewActive: viewState.isDetailViewActive
    readonly property string inspectorHelp: viewState.isInspectorCollapsed ? qsTranslate("Qorvane", "Show Info Panel")
                                                                           : qsTranslate("Qorvane", "Hide Info Panel")

    function focusSearch() {
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }

    height: Theme.toolbarHeight
    Accessible.role: Accessible.ToolBar
    Accessible.name: qsTranslate("Qorvane", "Toolbar")

    Row {
        id: leading

        anchors.left: parent.left
        anchors.leftMargin: Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4

        ToolButton {
            objectName: "backButton"
            text: qsTranslate("Qorvane", "Back")
            iconName: "chevron.left"
            visible: toolbar.isDetailViewActive
            onClicked: toolbar.viewState.isDetailViewActive = false
        }

        ToolButton {
            id: sortButton

            objectName: "sortButton"
            text: qsTranslate("Qorvane", "Sort")
            iconName: "arrow.up.arrow.down.circle"
            isOn: sortMenu.visible
            offersTip: !sortMenu.visible
            Accessible.role: Accessible.ButtonMenu
            onClicked: sortMenu.popUpAt(sortButton, 0, sortButton.height + 4)

            SortMenu {
                id: sortMenu

                objectName: "sortMenu"
                sorting: toolbar.viewState.sorting
            }
        }
    }

    Label {
        objectName: "contentTitle"
        anchors.left: leading.right
        anchors.leftMargin: 12
        anchors.right: inspectorButton.left
        anchors.rightMargin: Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        text: toolbar.isDetailViewActive ? toolbar.viewState.selected.name : toolbar.viewState.title
        elide: toolbar.isDetailViewActive ? Text.ElideMiddle : Text.ElideRight
        font.pixelSize: Theme.title3Size
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }

    ToolButton {
        id: inspectorButton

        objectName: "inspectorButton"
        anchors.right: field.left
        anchors.rightMargin: Theme.unit
        anchors.verticalCenter: parent.verticalCenter
        text: toolbar.inspectorHelp
        iconName: "sidebar.right"
        isOn: !toolbar.viewState.isInspectorCollapsed
        onClicked: toolbar.viewState.isInspectorCollapsed = !toolbar.viewState.isInspectorCollapsed
    }

    SearchField {
        id: field

        objectName: "searchField"
        anchors.right: parent.right
        anchors.rightMargin: Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        placeholderText: qsTranslate("Qorvane", "Search Photos")
        onTextChanged: toolbar.viewState.search.text = text
        onActiveFocusChanged: toolbar.viewState.focus.isLentToSearch = activeFocus
        onAccepted: toolbar.viewState.focus.focusDetail()
        onAbandoned: toolbar.viewState.focus.giveBack()
        Keys.onDownPressed: toolbar.viewState.focus.focusDetail()

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
