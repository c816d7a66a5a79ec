import QtQuick

/// What an entry of a menu is called, and which keys do the same.
Item {
    id: content

    required property string text
    required property string shortcutText
    required property color ink
    required property color fainterInk

    implicitWidth: name.implicitWidth + (shortcutText === "" ? 0 : 32 + keys.implicitWidth)

    Label {
        id: name

        anchors.verticalCenter: parent.verticalCenter
        text: content.text
        color: content.ink
        Accessible.ignored: true
    }

    Label {
        id: keys

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: content.shortcutText
        color: content.fainterInk
        Accessible.ignored: true
    }
}
