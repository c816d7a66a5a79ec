import QtQuick
import QorvaneStyle

/// The hairline between two columns, which can be drawn to either side. Lies with its middle on the columns' edge.
Item {
    id: splitter

    /// The edge is to move by so much to the right.
    signal moved(real distance)
    /// Back to where it was at first.
    signal reset

    width: 8

    Rectangle {
        // The last pixel of the column on the left.
        x: parent.width / 2 - width
        width: 1
        height: parent.height
        color: Theme.hairline
    }

    MouseArea {
        property real grabbedAt

        anchors.fill: parent
        cursorShape: Qt.SplitHCursor
        preventStealing: true
        onPressed: mouse => grabbedAt = mouse.x
        // The splitter itself has moved with the last step, so what is left is the next one.
        onPositionChanged: mouse => splitter.moved(mouse.x - grabbedAt)
        onDoubleClicked: splitter.reset()
    }
}
