import QtQuick
import QorvaneStyle
import QorvaneViews

/// What lies on the picture of a cell: the marks of a video, of the pointer, of the selection and of the keys.
Item {
    id: marks

    property bool isVideo: false
    property bool isHovered: false
    property bool isSelected: false
    property bool hasFocusRing: false

    Loader {
        anchors.fill: parent
        active: marks.isVideo
        sourceComponent: VideoBadges {}
    }

    Rectangle {
        objectName: "hoverVeil"
        anchors.fill: parent
        radius: Theme.cellRadius
        color: Theme.hover
        visible: marks.isHovered
    }

    Rectangle {
        objectName: "selectionRing"
        anchors.fill: parent
        color: "transparent"
        radius: Theme.cellRadius
        border.width: Theme.selectionStroke
        border.color: Theme.accent
        visible: marks.isSelected
    }

    // Around the picture, where it is seen beside the ring of a selected one too.
    Loader {
        anchors.fill: parent
        anchors.margins: -2 * Theme.focusStroke
        active: marks.hasFocusRing
        sourceComponent: Rectangle {
            objectName: "focusRing"
            color: "transparent"
            radius: Theme.cellRadius + 2 * Theme.focusStroke
            border.width: Theme.focusStroke
            border.color: Theme.accent
        }
    }
}
