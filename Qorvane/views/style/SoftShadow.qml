import QtQuick
import QtQuick.Window

/// The shadow of something that floats, to be laid under it.
// A whole picture for its size: on graphics cards a border image has gaps between its pieces where the screen's scale
// is no whole number.
Image {
    /// Of what casts it.
    property real radius: Theme.fieldRadius
    /// How many layers there are; they reach a little less far, in pixels, beyond what casts the shadow.
    property int count: 24
    /// Further below than above, as if the light came from over the window.
    property int fall: 6
    readonly property int reach: count - 1

    anchors.fill: parent
    anchors.margins: -reach
    anchors.topMargin: fall - reach
    anchors.bottomMargin: -fall - reach
    source: width > 0 && height > 0
            ? "image://shadow/" + radius + "/" + count + "/" + reach + "/" + Math.round(width) + "/" + Math.round(height)
              + "/" + Screen.devicePixelRatio + "/" + String(Theme.shadow).substring(1)
            : ""
}
