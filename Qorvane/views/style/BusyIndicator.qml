import QtQuick
import QtQuick.Templates as T
import QorvaneStyle

/// An arc that is seen while `running`, and turns.
T.BusyIndicator {
    id: control

    property color color: Theme.secondaryText
    /// Standing still it says that nothing more will come; each turn costs the window its frames.
    property bool isTurning: true

    implicitWidth: 20
    implicitHeight: 20
    Accessible.role: Accessible.Animation
    Accessible.name: qsTranslate("Qorvane", "Loading")

    contentItem: Icon {
        name: "progress"
        color: control.color
        size: control.width
        visible: control.running

        RotationAnimator on rotation {
            from: 0
            to: 360
            duration: Theme.turn
            loops: Animation.Infinite
            running: control.running && control.isTurning && control.visible && !Appearance.reducesMotion
        }
    }
}
