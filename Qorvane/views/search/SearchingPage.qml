import QtQuick
import QorvaneStyle

/// The middle column while a search runs.
Item {
    Column {
        anchors.centerIn: parent
        spacing: 12

        BusyIndicator {
            objectName: "searchingMark"
            anchors.horizontalCenter: parent.horizontalCenter
            width: 30
            height: 30
        }

        Label {
            text: qsTranslate("Qorvane", "搜索中...")
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            color: Theme.secondaryText
        }
    }
}
