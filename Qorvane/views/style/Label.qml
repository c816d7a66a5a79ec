import QtQuick
import QtQuick.Templates as T

/// Text in the interface's own size and ink.
T.Label {
    color: Theme.text
    font.pixelSize: Theme.bodySize
    elide: Text.ElideRight
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
