import QtQuick
import QtQuick.Templates as T

/// An entry of a menu, or the way into a submenu.
T.MenuItem {
    id: control

    /// The keys that do the same, as they are shown: "Ctrl+I".
    property string shortcutText: ""
    /// Takes something away; drawn in red.
    property bool isDestructive: false
    /// One of several, of which one is chosen: keeps room for the check mark that `isChosen` shows. Not `checkable`,
    /// which would uncheck a chosen entry that is clicked again.
    property bool isChoice: false
    property bool isChosen: false
    /// False takes the entry out of its menu. (`visible` is false for all while the menu is closed.)
    property bool isOffered: true
    readonly property color ink: highlighted ? Theme.accentInk : isDestructive ? Theme.destructive : Theme.text
    readonly property color fainterInk: highlighted ? Theme.accentInk : Theme.secondaryText

    implicitWidth: isOffered ? implicitContentWidth + leftPadding + rightPadding : 0
    implicitHeight: isOffered ? Theme.rowHeight : 0
    leftPadding: isChoice ? 28 : 10
    rightPadding: subMenu ? 26 : 10
    visible: isOffered
    enabled: isOffered
    opacity: enabled ? 1 : 0.4
    hoverEnabled: true
    Accessible.role: Accessible.MenuItem
    Accessible.name: text
    Accessible.description: shortcutText
    Accessible.checkable: isChoice
    Accessible.checked: isChosen
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: MenuItemText {
        text: control.text
        shortcutText: control.shortcutText
        ink: control.ink
        fainterInk: control.fainterInk
    }
    indicator: Icon {
        x: 8
        anchors.verticalCenter: parent?.verticalCenter
        name: "checkmark"
        size: 14
        color: control.ink
        visible: control.isChosen
    }
    arrow: Icon {
        x: control.width - width - 8
        anchors.verticalCenter: parent?.verticalCenter
        name: "chevron.right"
        size: 12
        color: control.fainterInk
        visible: control.subMenu !== null
    }
    background: Rectangle {
        radius: 5
        color: control.highlighted ? Theme.accentFill : "transparent"
    }
}
