import QtQuick
import QorvaneStyle
import QorvaneViews

/// A file's thumbnail, cut to this item's size and round at the corners; until it is there, an empty cell.
Rectangle {
    id: thumbnail

    required property string path
    /// With another number the picture is loaded again; the one before stays until then.
    property int revision: 0
    property color emptyColor: Theme.emptyCell
    property color progressColor: Theme.secondaryText
    readonly property bool isLoaded: image.isLoaded
    /// It has been loading for so long that the empty cell shows it.
    readonly property bool isWaiting: hasWaited && image.status === Image.Loading
    /// Out of view nothing turns.
    property bool isInView: true
    property int shownRevision: 0
    property bool hasWaited: false

    function sourceFor(number) {
        return ThumbnailUrl.source(path, width, height, Theme.cellRadius, number);
    }

    radius: Theme.cellRadius
    color: isLoaded ? "transparent" : emptyColor
    onPathChanged: {
        shownRevision = revision;
        hasWaited = false;
        patience.restart();
    }

    // Made for the few that need it: cells come into being many at a time.
    Loader {
        anchors.centerIn: parent
        active: thumbnail.hasWaited && !thumbnail.isLoaded
        sourceComponent: BusyIndicator {
            objectName: "progress"
            running: true
        }
        onLoaded: {
            const mark = item as BusyIndicator;
            mark.color = Qt.binding(() => thumbnail.progressColor);
            // A file that will never have a picture keeps the mark, at rest.
            mark.isTurning = Qt.binding(() => thumbnail.isWaiting && thumbnail.isInView);
        }
    }

    // A cell that fills at once shall not flicker.
    Timer {
        id: patience

        interval: Theme.untilWaitingShows
        running: true
        onTriggered: thumbnail.hasWaited = true
    }

    ProviderImage {
        id: image

        anchors.fill: parent
        source: thumbnail.sourceFor(thumbnail.shownRevision)
        sourceSize.width: thumbnail.width
        sourceSize.height: thumbnail.height
        visible: thumbnail.isLoaded
        onStatusChanged: if (status === Image.Ready && !isLoaded) ThumbnailUrl.noteEmpty(thumbnail.path)
    }

    // Fetches the changed picture; as soon as it is there, it is in the engine's cache for the other.
    Image {
        visible: false
        source: thumbnail.shownRevision === thumbnail.revision ? "" : thumbnail.sourceFor(thumbnail.revision)
        sourceSize.width: thumbnail.width
        sourceSize.height: thumbnail.height
        onStatusChanged: if (status === Image.Ready) thumbnail.shownRevision = thumbnail.revision
    }
}
