import QtQuick
import QtQuick.Templates as T

/// Entries that float over the window: `popUpAt()` opens them. A menu in a menu is a submenu.
T.Menu {
    id: control

    readonly property int smallestWidth: 140
    readonly property bool isSubmenu: (parent as T.MenuItem) !== null
    /// Chosen from or dismissed, it only fades: keys and clicks are for the window again.
    property bool isLeaving: false
    /// The same after the click that may have begun it: that one is the menu's.
    property bool hasLeft: false
    /// Where it was asked for while it still faded; the toolkit, from 6.8 on, wouldn't open it then.
    property var askedFor: null

    /// Opens it with a corner at a position in `ground`.
    function popUpAt(ground, x, y) {
        if (isLeaving && visible)
            askedFor = { ground: ground, x: x, y: y };
        else
            popup(ground, x, y);
    }

    // The longest entry decides; the ones that this menu doesn't offer now have no width.
    contentWidth: Array.from({ length: count }, (_, index) => itemAt(index)?.implicitWidth ?? 0)
                       .reduce((a, b) => Math.max(a, b), smallestWidth)
    implicitWidth: contentWidth + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    padding: 5
    margins: Theme.unit
    overlap: 2
    cascade: true
    // Nothing below answers to the pointer while a menu is open; the click beside it only closes it. What is below a
    // submenu is its own menu, which does answer.
    modal: !isSubmenu && !hasLeft
    dim: false
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside

    onAboutToShow: {
        isLeaving = false;
        hasLeft = false;
    }
    onAboutToHide: {
        isLeaving = true;
        // The toolkit does it when the fade has ended, and a key pressed until then would be lost.
        if (!isSubmenu)
            T.ApplicationWindow.contentItem.forceActiveFocus(Qt.PopupFocusReason);
    }

    onClosed: {
        const asked = askedFor;
        askedFor = null;
        if (asked !== null)
            popup(asked.ground, asked.x, asked.y);
    }

    delegate: MenuItem {}

    contentItem: ListView {
        implicitHeight: contentHeight
        model: control.contentModel
        currentIndex: control.currentIndex
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        clip: interactive
        Accessible.role: Accessible.PopupMenu
        Accessible.name: control.title
        T.ScrollBar.vertical: ScrollBar {}

        Timer {
            interval: 0
            running: control.isLeaving
            onTriggered: control.hasLeft = true
        }

        // An entry that has been chosen can't be chosen again.
        MouseArea {
            parent: control.contentItem
            anchors.fill: parent
            z: 1
            visible: control.isLeaving
        }
    }
    background: Item {
        SoftShadow {}

        Rectangle {
            anchors.fill: parent
            radius: Theme.fieldRadius
            color: Theme.popup
            border.color: Theme.popupLine
        }
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick; easing.type: Theme.easing }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.quick; easing.type: Theme.easing }
    }
    T.Overlay.modal: Item {}
}
