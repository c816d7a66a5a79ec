import QtQuick

/// The shadow of something that floats, to be laid under it. Made of ever larger translucent rectangles, since the
/// software scene graph has no blur.
Item {
    id: shadow

    /// Of what casts it.
    property real radius: Theme.fieldRadius
    /// How far the shadow reaches beyond what casts it.
    property int reach: 18
    /// Further below than above, as if the light came from over the window.
    property int fall: 6

    anchors.fill: parent

    Repeater {
        model: shadow.reach

        Rectangle {
            required property int index
            readonly property SoftShadow shadow: parent as SoftShadow

            anchors.fill: parent
            anchors.margins: -index
            anchors.topMargin: (shadow?.fall ?? 0) - index
            anchors.bottomMargin: -(shadow?.fall ?? 0) - index
            radius: (shadow?.radius ?? 0) + index
            color: Theme.shadow
        }
    }
}
