import QtQuick

/// Says what the choices below it are about.
Item {
    id: heading

    required property string text

    implicitWidth: label.implicitWidth + 20
    implicitHeight: 24
    Accessible.role: Accessible.Heading
    Accessible.name: text

    Label {
        id: label

        x: 10
        anchors.verticalCenter: parent.verticalCenter
        text: heading.text
        font.pixelSize: Theme.captionSize
        font.weight: Font.DemiBold
        color: Theme.secondaryText
        Accessible.ignored: true
    }
}
