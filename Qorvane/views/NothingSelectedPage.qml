import QtQuick
import QorvaneStyle

/// The middle column before anything is selected; with an empty library it also leads to the first folder.
Item {
    id: page

    required property bool isLibraryEmpty

    signal addFolderRequested

    MessagePage {
        anchors.fill: parent
        anchors.margins: 32
        anchors.bottomMargin: page.isLibraryEmpty ? 32 + button.height + 24 : 32
        iconName: "folder"
        iconSize: 56
        message: qsTranslate("Qorvane", "Select a folder to view media files.")
        messageSize: Theme.title2Size
        messageWeight: Font.DemiBold
    }

    Button {
        id: button

        objectName: "firstFolderButton"
        anchors.horizontalCenter: parent.horizontalCenter
        y: parent.height / 2 + 44
        visible: page.isLibraryEmpty
        isProminent: true
        text: qsTranslate("Qorvane", "Add Folder")
        onClicked: page.addFolderRequested()
    }
}
