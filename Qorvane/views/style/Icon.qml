import QtQuick

/// One of the program's icons, by name, drawn in `color`.
Image {
    required property string name
    property color color: Theme.text
    property int size: Theme.iconSize

    width: size
    height: size
    sourceSize.width: size
    sourceSize.height: size
    source: "image://icons/" + name + "/" + String(color).substring(1) + "/" + size
}
