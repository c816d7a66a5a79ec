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

    function moveTo(row, modifiers) {
        currentIndex = Math.max(0, Math.min(row, count - 1));
        browser.click(currentIndex, modifiers & Qt.ShiftModifier);
    }

    objectName: "folderBrowserList"
    clip: true
    activeFocusOnTab: true
    keyNavigationEnabled: false
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    model: browser
    Accessible.role: Accessible.List
    Accessible.name: browser.path
    T.ScrollBar.vertical: ScrollBar {}

    Keys.onDownPressed: event => list.moveTo(browser.selectionCount === 0 ? 0 : currentIndex + 1, event.modifiers)
    Keys.onUpPressed: event => list.moveTo(currentIndex - 1, event.modifiers)
    Keys.onSpacePressed: browser.click(currentIndex, Qt.ControlModifier)
    Keys.onRightPressed: browser.openRow(currentIndex)
    Keys.onLeftPressed: browser.openParent()
    Keys.onReturnPressed: accepted()
    Keys.onEnterPressed: accepted()

    delegate: FolderBrowserRow {
        width: (ListView.view as FolderBrowserList).width
        onClicked: (index, modifiers) => {
            const view = ListView.view as FolderBrowserList;
            view.forceActiveFocus();
            view.currentIndex = index;
            view.browser.click(index, modifiers);
        }
        onOpened: index => (ListView.view as FolderBrowserList).browser.openRow(index)
    }
}
