import QtQuick
import QtQuick.Templates as T

/// A thin bar that shows itself while something scrolls or the pointer is on it.
T.ScrollBar {
    id: control

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.06
    visible: size < 1

    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: Theme.secondaryText
        opacity: control.pressed ? 0.9 : control.active ? 0.6 : 0.0

        Behavior on opacity {
            NumberAnimation { duration: Theme.quick; easing.type: Theme.easing }
        }
    }
}
