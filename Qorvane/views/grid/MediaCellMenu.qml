import QtQuick
import QorvaneStyle
import QorvaneViews

/// What can be done with the file of a cell.
Menu {
    id: menu

    required property MediaActions actions
    property string path: ""

    function openAt(path, ground, position) {
        menu.path = path;
        popUpAt(ground, position.x, position.y);
    }

    objectName: "cellMenu"
    title: qsTranslate("Qorvane", "Photo")

    MenuItem {
        objectName: "openInFinder"
        text: qsTranslate("Qorvane", "Open in Finder")
        onTriggered: menu.actions.openInFinder(menu.path)
    }
}
