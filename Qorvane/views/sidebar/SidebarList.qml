import QtQuick
import QtQuick.Templates as T
import QorvaneStyle
import QorvaneViews

/// The sidebar's rows, of which only those in view exist.
ListView {
    id: list

    required property Sidebar sidebar
    required property KeyboardFocus keys

    function showCurrentRow() {
        scrolling.stop();
        if (currentIndex > 1)
            positionViewAtIndex(currentIndex, ListView.Contain);
        else if (currentIndex >= 0)
            positionViewAtBeginning(); // the header is above the first row
    }

    function isInView(top, height) {
        return top + height > contentY && top < contentY + list.height;
    }

    /// The row at a position in the list's contents; -1 for none.
    function rowAt(position) {
        return indexAt(position.x, position.y);
    }

    function openMenu(row, item, x, y) {
        if (sidebar.openMenu(row))
            menu.popUpAt(item, x, y);
    }

    function openMenuOfCurrentRow() {
        showCurrentRow();
        if (currentItem !== null)
            openMenu(currentIndex, currentItem, Theme.contentPadding, currentItem.height);
    }

    clip: true
    activeFocusOnTab: true
    keyNavigationEnabled: false
    currentIndex: -1
    // Rows that come and go change the index too, and mustn't move what the user looks at.
    highlightFollowsCurrentItem: false
    boundsBehavior: Flickable.StopAtBounds
    bottomMargin: Theme.unit
    reuseItems: true
    model: sidebar.rows
    Accessible.role: Accessible.Tree
    Accessible.name: qsTranslate("Qorvane", "Sidebar")
    T.ScrollBar.vertical: ScrollBar { id: bar }
    Component.onCompleted: {
        currentIndex = sidebar.currentRow;
        showCurrentRow();
    }

    Keys.onMenuPressed: openMenuOfCurrentRow()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_F10 && event.modifiers === Qt.ShiftModifier) {
            openMenuOfCurrentRow();
            event.accepted = true;
        } else if (!(event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier))) {
            event.accepted = sidebar.pressKey(event.key, event.text);
        }
    }

    Connections {
        target: list.sidebar

        function onCurrentRowChanged() {
            list.currentIndex = list.sidebar.currentRow;
        }

        function onCurrentRowChosen() {
            list.showCurrentRow();
        }
    }

    delegate: SidebarDelegate {
        width: (ListView.view as SidebarList).width
        sidebar: (ListView.view as SidebarList).sidebar
        isInView: isRunning && (ListView.view as SidebarList).isInView(y, height)
        showsFocus: activeFocus && (ListView.view as SidebarList).keys.isVisible
        onPointedAt: (ListView.view as SidebarList).forceActiveFocus()
    }

    SmoothScrolling {
        id: scrolling

        view: list
        bar: bar
    }

    Rectangle {
        parent: list
        anchors.fill: parent
        anchors.margins: Theme.focusStroke
        radius: Theme.rowRadius
        color: "transparent"
        border.width: Theme.focusStroke
        border.color: Theme.accent
        visible: list.activeFocus && list.keys.isVisible && list.currentIndex < 0
    }

    // Beside the rows: nothing is chosen then, and a search covers the whole library.
    TapHandler {
        parent: list.contentItem
        onTapped: point => {
            if (list.rowAt(point.position) < 0) {
                list.forceActiveFocus();
                list.sidebar.deselect();
            }
        }
    }

    TapHandler {
        parent: list.contentItem
        // A finger has no buttons, and would open the menu with every tap.
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad | PointerDevice.Stylus
        acceptedButtons: Qt.RightButton
        onTapped: point => {
            list.forceActiveFocus();
            list.openMenu(list.rowAt(point.position), list.contentItem, point.position.x, point.position.y);
        }
    }

    SidebarContextMenu {
        id: menu

        menu: list.sidebar.menu
    }
}
