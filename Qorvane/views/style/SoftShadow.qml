import QtQuick

/// The shadow of something that floats, to be laid under it. Made of ever larger translucent rectangles, since the
/// software scene graph has no blur.
Item {
    id: shadow

    /// Of what casts it.
    property real radius: Theme.fieldRadius
    /// How many layers there are, and how many pixels it reaches beyond what casts it.
    property int count: 24
    /// Further below than above, as if the light came from over the window.
    property int fall: 6

    anchors.fill: parent

    Repeater {
        model: shadow.count

        Rectangle {
            required property int index
            readonly property SoftShadow shadow: parent as SoftShadow
            // Further and further apart, so that the shadow fades out instead of ending.
            readonly property real spread: index * index / (shadow?.count ?? 1)

            anchors.fill: parent
            anchors.margins: -spread
            anchors.topMargin: (shadow?.fall ?? 0) - spread
            anchors.bottomMargin: -(shadow?.fall ?? 0) - spread
            radius: (shadow?.radius ?? 0) + spread
            color: Theme.shadow
        }
    }
}
