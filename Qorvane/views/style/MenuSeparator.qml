import QtQuick
import QtQuick.Templates as T

/// A line between groups of a menu's entries.
T.MenuSeparator {
    id: control

    /// False takes the line out of its menu.
    property bool isOffered: true

    implicitHeight: isOffered ? 11 : 0
    horizontalPadding: 10
    verticalPadding: 5
    visible: isOffered
    enabled: false
    Accessible.role: Accessible.Separator

    contentItem: Rectangle {
        implicitHeight: 1
        color: Theme.popupLine
    }
}
