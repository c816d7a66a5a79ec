import QtQuick
import QorvaneStyle

/// The inspector with nothing selected.
Item {
    Column {
        anchors.centerIn: parent
        width: parent.width - 4 * Theme.unit
        spacing: Theme.unit

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "photo.on.rectangle.angled"
            size: 36
            color: Theme.secondaryText
        }

        Label {
            objectName: "inspectorEmptyTitle"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: qsTranslate("Qorvane", "Inspector.Empty.Title")
            font.pixelSize: Theme.title3Size
            font.weight: Font.DemiBold
            color: Theme.secondaryText
        }

        Label {
            objectName: "inspectorEmptySubtitle"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: qsTranslate("Qorvane", "Inspector.Empty.Subtitle")
            font.pixelSize: Theme.subheadlineSize
            color: Theme.secondaryText
        }
    }
}
