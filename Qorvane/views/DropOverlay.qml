import QtQuick
import QorvaneStyle
import QorvaneViews

/// Takes folders that are dragged onto the window.
DropArea {
    id: area

    required property ContentViewState viewState

    keys: ["text/uri-list"]
    onDropped: drop => {
        drop.acceptProposedAction();
        area.viewState.addFolders(drop.urls);
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: 4
        radius: Theme.cardRadius
        color: Qt.alpha(Theme.accent, 0.08)
        border.width: 2
        border.color: Theme.accent
        visible: area.containsDrag
    }
}
