import QtQuick
import QorvaneStyle

/// A few words in the middle of an empty column, under an icon where one is named. What is declared in it follows
/// below.
Item {
    id: page

    property string iconName: ""
    property int iconSize: Theme.pageIconSize
    required property string message
    property int messageSize: Theme.titleSize
    property int messageWeight: Font.Normal
    property string hint: ""
    property int padding: Theme.pagePadding
    property int spacing: 12
    default property alias content: column.data

    Column {
        id: column

        anchors.centerIn: parent
        width: parent.width - 2 * page.padding
        spacing: page.spacing

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: page.iconName !== ""
            name: page.iconName === "" ? "photo" : page.iconName
            size: page.iconSize
            color: Theme.secondaryText
        }

        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: page.message
            font.pixelSize: page.messageSize
            font.weight: page.messageWeight
            color: Theme.secondaryText
        }

        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            visible: page.hint !== ""
            text: page.hint
            font.pixelSize: Theme.subheadlineSize
            color: Theme.secondaryText
        }
    }
}
