import QtQuick
import QorvaneStyle
import QorvaneViews

/// The strip over the middle column: the way back from an open file, the order of the photographs, what is shown, the
/// inspector's switch and the search field.
Item {
    id: toolbar

    required property Sorting sorting
    required property SearchController search
    required property ColumnFocus columns
    /// What the window shows, or the name of the open file.
    required property string title
    required property bool isDetailViewActive
    required property bool isInspectorCollapsed
    readonly property string inspectorHelp: isInspectorCollapsed ? qsTranslate("Qorvane", "Show Info Panel")
                                                                 : qsTranslate("Qorvane", "Hide Info Panel")

    signal backRequested
    signal inspectorToggled

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
            onClicked: toolbar.backRequested()
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
                sorting: toolbar.sorting
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
        text: toolbar.title
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
        isOn: !toolbar.isInspectorCollapsed
        onClicked: toolbar.inspectorToggled()
    }

    SearchField {
        id: field

        objectName: "searchField"
        anchors.right: parent.right
        anchors.rightMargin: Theme.contentPadding
        anchors.verticalCenter: parent.verticalCenter
        placeholderText: qsTranslate("Qorvane", "Search Photos")
        onTextChanged: toolbar.search.text = text
        onActiveFocusChanged: toolbar.columns.isLentToSearch = activeFocus
        onAccepted: toolbar.columns.focusDetail()
        onAbandoned: toolbar.columns.giveBack()
        Keys.onDownPressed: toolbar.columns.focusDetail()

        Connections {
            target: toolbar.search

            function onTextChanged() {
                field.text = toolbar.search.text;
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
