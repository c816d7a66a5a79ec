import QtQuick

/// The shadow of something that floats, to be laid under it.
BorderImage {
    /// Of what casts it.
    property real radius: Theme.fieldRadius
    /// How many layers there are, and how many pixels it reaches beyond what casts it.
    property int count: 24
    /// Further below than above, as if the light came from over the window.
    property int fall: 6
    /// What of the picture isn't stretched; it begins inside what casts the shadow, where that is rounded.
    readonly property int edge: (sourceSize.width - 1) / 2
    readonly property real reach: edge - radius

    anchors.fill: parent
    anchors.margins: -reach
    anchors.topMargin: fall - reach
    anchors.bottomMargin: -fall - reach
    border.left: edge
    border.top: edge
    border.right: edge
    border.bottom: edge
    source: "image://shadow/" + radius + "/" + count + "/" + String(Theme.shadow).substring(1)
}
