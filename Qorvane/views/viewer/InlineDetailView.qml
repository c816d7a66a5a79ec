import QtQuick
import QorvaneStyle
import QorvaneViews

/// The middle column while one file is open: its picture as large as it fits, a video's preview.
FocusScope {
    id: view

    required property SelectedMedia media
    /// A selection in the grid is not opened yet.
    required property bool isOpen
    /// A bound rather than the size shown, which would decode anew at every step of a resize.
    required property int decodedSize
    readonly property string path: isOpen ? media.path : ""

    signal closeRequested

    Keys.onEscapePressed: closeRequested()

    Item {
        objectName: "openPicture"
        anchors.fill: parent
        anchors.margins: Theme.contentPadding
        focus: true
        Accessible.role: Accessible.Graphic
        Accessible.name: view.media.name

        ProviderImage {
            id: thumbnail

            anchors.fill: parent
            source: PictureUrl.thumbnail(view.path)
            fillMode: Image.PreserveAspectFit
            visible: !picture.isLoaded && isLoaded
            cache: false
        }

        ProviderImage {
            id: picture

            objectName: "fullPicture"
            anchors.fill: parent
            source: PictureUrl.full(view.path)
            sourceSize.width: view.decodedSize
            sourceSize.height: view.decodedSize
            fillMode: Image.PreserveAspectFit
            visible: isLoaded
            cache: false
        }

        BusyIndicator {
            anchors.centerIn: parent
            running: picture.status === Image.Loading && !thumbnail.isLoaded
            visible: running
        }

        PlayBadge {
            objectName: "playBadge"
            anchors.centerIn: parent
            visible: view.media.isVideo
        }
    }

    MessagePage {
        objectName: "noPicturePage"
        anchors.fill: parent
        visible: picture.status === Image.Ready && !picture.isLoaded && !thumbnail.isLoaded
                 && !view.media.isVideo
        iconName: "photo"
        message: qsTranslate("Qorvane", "This picture can't be shown.")
        messageSize: Theme.headlineSize
    }
}
