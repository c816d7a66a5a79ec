import QtQuick
import QtQuick.Templates as T

/// A button with words. `isProminent` marks the one that the view is waiting for.
T.Button {
    id: control

    property bool isProminent: false
    // White on a faded accent can't be read, so what is disabled is plain.
    readonly property bool isFilled: isProminent && enabled

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    horizontalPadding: Theme.unit * 2
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4
    font.pixelSize: Theme.bodySize
    Accessible.role: Accessible.Button
    Accessible.name: text

    contentItem: Label {
        text: control.text
        font: control.font
        color: control.isFilled ? Theme.accentInk : Theme.text
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
    background: Rectangle {
        radius: Theme.fieldRadius
        color: control.isFilled ? Theme.accentFill : Theme.button
        border.width: control.visualFocus ? Theme.focusStroke : 0
        border.color: control.isFilled ? Theme.text : Theme.accent

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: control.pressed ? Theme.pressed : control.hovered ? Theme.hover : "transparent"
        }
    }
}
