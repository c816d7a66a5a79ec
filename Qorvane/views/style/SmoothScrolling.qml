import QtQuick
import QtQuick.Window
import QtQuick.Templates as T
import QorvaneStyle

/// How a list scrolls: by the wheel in a motion for each notch, by a touchpad with the fingers, by the flick of a
/// finger on the screen.
Item {
    id: scrolling

    required property Flickable view
    required property T.ScrollBar bar
    /// Where the wheel works; wider than the view where that keeps margins.
    property Item ground: view
    readonly property alias isMoving: motion.running
    readonly property double lowest: view.originY - view.topMargin
    readonly property double highest: view.originY + view.contentHeight + view.bottomMargin - view.height

    function scrollTo(position, duration) {
        motion.stop();
        motion.wanted = position;
        motion.duration = duration;
        motion.to = Scrolling.settled(position, lowest, highest, Screen.devicePixelRatio);
        // An end between two pixels, where the view can't lie, is not sought for ever.
        if (Math.abs(motion.to - view.contentY) > 0.5 / Screen.devicePixelRatio)
            motion.start();
    }

    /// The view stays where it is, or where it is put next.
    function stop() {
        motion.stop();
    }

    function turn(pixelDelta, angleDelta) {
        // Turned on while it still moves, it goes on from where that would end.
        const from = motion.running ? motion.to : view.contentY;
        scrollTo(from + Scrolling.wheelDistance(pixelDelta, angleDelta),
                 Scrolling.isNotch(pixelDelta, angleDelta) ? Theme.panel : 0);
    }

    // A mouse has the wheel, and dragging with it moves nothing on a desktop. (A finger counts as hovering, too.)
    Binding {
        target: scrolling.view
        property: "interactive"
        value: !mouse.active
    }

    Binding {
        target: scrolling.view
        property: "pixelAligned"
        value: scrolling.Screen.devicePixelRatio === Math.floor(scrolling.Screen.devicePixelRatio)
    }

    NumberAnimation {
        id: motion

        property double wanted: 0

        target: scrolling.view
        property: "contentY"
        easing.type: Theme.easing
        // A list of rows of different heights knows where it ends only there.
        onFinished: scrolling.scrollTo(wanted, Theme.quick)
    }

    Connections {
        target: scrolling.bar

        function onPressedChanged() {
            if (scrolling.bar.pressed)
                scrolling.stop();
            else
                scrolling.scrollTo(scrolling.view.contentY, 0);
        }
    }

    PointHandler {
        id: mouse

        parent: scrolling.view
        target: null
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        acceptedButtons: Qt.AllButtons
    }

    // The view's own scrolling by the wheel is another.
    WheelHandler {
        parent: scrolling.view
        target: null
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => scrolling.turn(event.pixelDelta, event.angleDelta)
    }

    WheelHandler {
        parent: scrolling.ground
        target: null
        enabled: scrolling.ground !== scrolling.view
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => scrolling.turn(event.pixelDelta, event.angleDelta)
    }
}
