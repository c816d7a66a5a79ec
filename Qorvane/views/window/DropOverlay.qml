import QtQuick
import QorvaneStyle
import QorvaneViews

/// Takes folders that are dragged onto the window, and says so while they are over it.
DropArea {
    id: area

    required property FolderAdding folderAdding

    objectName: "dropOverlay"
    keys: ["text/uri-list"]
    // Always a copy: after a move, the file manager would delete what the library only points to.
    onEntered: drag => {
        if (area.folderAdding.mayHold(drag.urls) && (drag.supportedActions & Qt.CopyAction))
            drag.accept(Qt.CopyAction);
        else
            drag.accepted = false;
    }
    onPositionChanged: drag => drag.accept(Qt.CopyAction)
    onDropped: drop => {
        drop.accept(Qt.CopyAction);
        area.folderAdding.add(drop.urls);
    }

    Rectangle {
        id: veil

        objectName: "dropVeil"
        anchors.fill: parent
        color: Qt.alpha(Theme.window, 0.72)
        opacity: area.containsDrag ? 1 : 0
        visible: opacity > 0

        Behavior on opacity {
            NumberAnimation { duration: Theme.quick; easing.type: Theme.easing }
        }

        Rectangle {
            anchors.fill: parent
            anchors.margins: Theme.unit
            radius: Theme.cardRadius
            color: Qt.alpha(Theme.accent, 0.08)
            border.width: Theme.focusStroke
            border.color: Theme.accent
        }

        Item {
            anchors.centerIn: parent
            width: words.width + 64
            height: words.height + 48

            SoftShadow {
                radius: 16
            }

            Rectangle {
                anchors.fill: parent
                radius: 16
                color: Theme.popup
                border.color: Theme.popupLine
            }

            Column {
                id: words

                anchors.centerIn: parent
                spacing: 12

                Icon {
                    anchors.horizontalCenter: parent.horizontalCenter
                    name: "folder.badge.plus"
                    size: 48
                    color: Theme.accent
                }

                Label {
                    text: qsTranslate("Qorvane", "Drop folders to add them to the library")
                    font.pixelSize: Theme.title3Size
                    font.weight: Font.DemiBold
                }
            }
        }
    }
}
