import QtQuick
import QtQuick.Templates as T

/// A short explanation over the control that declares it.
T.ToolTip {
    id: control

    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? parent.height + 4 : 0
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    margins: Theme.unit
    horizontalPadding: Theme.unit
    verticalPadding: 4
    delay: Theme.untilTip
    timeout: Theme.tipStays
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    contentItem: Label {
        text: control.text
        font.pixelSize: Theme.captionSize
    }
    background: Item {
        SoftShadow {
            radius: Theme.rowRadius
            count: 12
            fall: 3
        }

        Rectangle {
            anchors.fill: parent
            radius: Theme.rowRadius
            color: Theme.popup
            border.color: Theme.popupLine
        }
    }
}
