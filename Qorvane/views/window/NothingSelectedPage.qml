import QtQuick
import QorvaneStyle

/// The middle column before anything is selected; with an empty library it also leads to the first folder.
MessagePage {
    id: page

    required property bool isLibraryEmpty

    signal addFolderRequested

    iconName: "folder"
    iconSize: 56
    message: qsTranslate("Qorvane", "Select a folder to view media files.")
    messageSize: Theme.title2Size
    messageWeight: Font.DemiBold

    // A little further off: what to do, after what there is.
    Item {
        width: 1
        height: 4
        visible: page.isLibraryEmpty
    }

    Button {
        objectName: "firstFolderButton"
        anchors.horizontalCenter: parent.horizontalCenter
        visible: page.isLibraryEmpty
        isProminent: true
        text: qsTranslate("Qorvane", "Add Folder")
        onClicked: page.addFolderRequested()
    }

    Label {
        objectName: "firstFolderHint"
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        visible: page.isLibraryEmpty
        text: qsTranslate("Qorvane", "Or drag a folder from your file manager onto this window.")
        font.pixelSize: Theme.subheadlineSize
        color: Theme.secondaryText
    }
}
