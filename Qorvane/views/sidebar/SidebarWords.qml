import QtQuick
import QorvaneStyle

/// A section's header, or what stands in place of its rows.
Item {
    id: words

    required property string text
    required property bool isHeader

    Label {
        x: Theme.contentPadding
        width: parent.width - 2 * x
        // A header keeps its distance from the section above it.
        y: Math.round((parent.height - height) / 2) + (words.isHeader ? 4 : 0)
        text: words.text
        font.pixelSize: words.isHeader ? Theme.captionSize : Theme.bodySize
        font.weight: words.isHeader ? Font.DemiBold : Font.Normal
        color: Theme.secondaryText
        Accessible.ignored: true
    }
}
