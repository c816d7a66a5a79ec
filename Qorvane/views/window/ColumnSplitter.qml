import QtQuick
import QorvaneStyle

/// The hairline between two columns, which can be drawn to either side. Lies with its middle on the columns' edge.
Item {
    id: splitter

    /// For screen readers.
    required property string label

    /// The edge is to move by so much to the right.
    signal moved(real distance)
    /// Back to where it was at first.
    signal reset

    width: 8
    activeFocusOnTab: true
    Accessible.role: Accessible.Splitter
    Accessible.name: label
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.onDecreaseAction: splitter.moved(-Theme.unit)
    Accessible.onIncreaseAction: splitter.moved(Theme.unit)
    Keys.onLeftPressed: splitter.moved(-Theme.unit)
    Keys.onRightPressed: splitter.moved(Theme.unit)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home) {
            splitter.reset();
            event.accepted = true;
        }
    }

    Rectangle {
        objectName: "splitterLine"
        // Ends with the last pixel of the column on the left, where it is a hairline.
        x: parent.width / 2 - 1
        width: splitter.activeFocus ? Theme.focusStroke : 1
        height: parent.height
        color: splitter.activeFocus ? Theme.accent
             : area.containsMouse || area.pressed ? Theme.secondaryText : Theme.hairline
    }

    MouseArea {
        id: area

        property real grabbedAt

        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.SplitHCursor
        preventStealing: true
        onPressed: mouse => grabbedAt = mouse.x
        // The splitter itself has moved with the last step, so what is left is the next one.
        onPositionChanged: mouse => {
            if (pressed)
                splitter.moved(mouse.x - grabbedAt);
        }
        onDoubleClicked: splitter.reset()
    }
}
