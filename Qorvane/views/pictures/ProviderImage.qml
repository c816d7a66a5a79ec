import QtQuick

/// A picture from one of our providers. A file without one is answered with a single clear pixel.
Image {
    readonly property bool isLoaded: status === Image.Ready && (implicitWidth > 1 || implicitHeight > 1)
}
