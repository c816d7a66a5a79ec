import QtQuick
import QtQuick.Templates as T
import QorvaneStyle
import QorvaneViews

/// The folders in a folder, with the selection that a file manager's users expect.
ListView {
    id: list

    required property FolderBrowser browser

    /// The user wants what is selected.
    signal accepted

    function showCurrentRow() {
        scrolling.stop();
        currentIndex = browser.currentRow;
        if (currentIndex < 0)
            positionViewAtBeginning();
        else
            positionViewAtIndex(currentIndex, ListView.Contain);
    }

    objectName: "folderBrowserList"
    clip: true
    activeFocusOnTab: true
    keyNavigationEnabled: false
    currentIndex: -1
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    model: browser
    Accessible.role: Accessible.List
    Accessible.name: browser.path
    T.ScrollBar.vertical: ScrollBar { id: bar }

    Keys.onDownPressed: event => browser.moveCurrentRow(1, event.modifiers & Qt.ShiftModifier)
    Keys.onUpPressed: event => browser.moveCurrentRow(-1, event.modifiers & Qt.ShiftModifier)
    Keys.onSpacePressed: browser.click(browser.currentRow, Qt.ControlModifier)
    Keys.onRightPressed: browser.openCurrentRow()
    Keys.onLeftPressed: browser.openParent()
    Keys.onReturnPressed: accepted()
    Keys.onEnterPressed: accepted()

    SmoothScrolling {
        id: scrolling

        view: list
        bar: bar
    }

    Connections {
        target: list.browser

        function onCurrentRowChanged() {
            list.showCurrentRow();
        }
    }

    delegate: FolderBrowserRow {
        width: (ListView.view as FolderBrowserList).width
        onClicked: (index, modifiers) => {
            const view = ListView.view as FolderBrowserList;
            view.forceActiveFocus();
            view.browser.click(index, modifiers);
        }
        onOpened: index => (ListView.view as FolderBrowserList).browser.openRow(index)
    }
}
