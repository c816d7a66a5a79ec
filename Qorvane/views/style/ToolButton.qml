import QtQuick
import QtQuick.Templates as T

/// A button that is only its icon; `text` is its name for tooltips and screen readers.
T.ToolButton {
    id: control

    required property string iconName
    property color iconColor: Theme.text
    property int iconSize: Theme.iconSize
    /// What the button switches is on.
    property bool isOn: false
    /// False while something else says it, as an open menu of the button's own.
    property bool offersTip: true

    implicitWidth: Theme.controlHeight
    implicitHeight: Theme.controlHeight
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4
    Accessible.role: Accessible.Button
    Accessible.name: text

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: control.iconName
            color: control.iconColor
            size: control.iconSize
        }
    }
    background: Rectangle {
        radius: Theme.fieldRadius
        color: control.pressed ? Theme.pressed : control.hovered || control.isOn ? Theme.hover : "transparent"
        border.width: control.visualFocus ? Theme.focusStroke : 0
        border.color: Theme.accent

        Behavior on color {
            ColorAnimation { duration: Theme.quick; easing.type: Theme.easing }
        }
    }

    HelpTip {
        text: control.text
        isWanted: (control.hovered || control.visualFocus) && !control.pressed && control.offersTip
    }
}
