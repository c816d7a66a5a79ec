import QtQuick
import QtQuick.Templates as T
import QorvaneStyle
import QorvaneViews

/// Chooses folders to add, several at a time, for desktops without a panel of their own.
T.Popup {
    id: dialog

    required property FolderAdding folderAdding
    readonly property bool isEmpty: browser.path !== "" && browser.count === 0
    readonly property bool isUnreadable: browser.state === FolderBrowser.Unreadable

    function accept() {
        if (browser.chosen.length > 0) {
            dialog.folderAdding.add(browser.chosen);
            close();
        }
    }

    objectName: "folderDialog"
    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: 560
    height: 600 // half a row is cut off at the bottom, which tells that there are more
    padding: Theme.contentPadding
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    onOpened: list.forceActiveFocus()
    onAboutToShow: browser.open(browser.path)

    T.Overlay.modal: Rectangle {
        color: Theme.veil
    }
    background: Item {
        SoftShadow {
            radius: Theme.cardRadius
        }

        Rectangle {
            anchors.fill: parent
            radius: Theme.cardRadius
            color: Theme.popup
            border.color: Theme.popupLine
        }
    }

    FolderBrowser {
        id: browser
    }

    Item {
        anchors.fill: parent
        Accessible.role: Accessible.Dialog
        Accessible.name: title.text

        Label {
            id: title

            text: qsTranslate("Qorvane", "Add Folder")
            font.pixelSize: Theme.title3Size
            font.weight: Font.DemiBold
        }

        ToolButton {
            id: parentButton

            objectName: "parentFolderButton"
            anchors.top: title.bottom
            anchors.topMargin: Theme.unit
            text: qsTranslate("Qorvane", "Enclosing Folder")
            iconName: "chevron.left"
            enabled: browser.hasParent
            onClicked: browser.openParent()
        }

        Label {
            objectName: "folderDialogPath"
            anchors.left: parentButton.right
            anchors.leftMargin: Theme.unit
            anchors.right: parent.right
            anchors.verticalCenter: parentButton.verticalCenter
            text: browser.path
            color: Theme.secondaryText
            elide: Text.ElideLeft
        }

        Rectangle {
            id: frame

            anchors.top: parentButton.bottom
            anchors.topMargin: Theme.unit
            anchors.bottom: hint.top
            anchors.bottomMargin: Theme.unit
            width: parent.width
            color: Theme.window
            radius: Theme.fieldRadius
            border.width: list.activeFocus ? Theme.focusStroke : 1
            border.color: list.activeFocus ? Theme.accent : Theme.hairline

            FolderBrowserList {
                id: list

                anchors.fill: parent
                anchors.margins: 4
                browser: browser
                onAccepted: dialog.accept()
            }

            MessagePage {
                objectName: "noFoldersPage"
                anchors.fill: parent
                visible: dialog.isEmpty
                message: qsTranslate("Qorvane", "There are no folders in this folder.")
                messageSize: Theme.bodySize
            }
        }

        Label {
            id: hint

            objectName: "folderDialogHint"
            anchors.bottom: addButton.top
            anchors.bottomMargin: Theme.unit
            width: parent.width
            text: dialog.isUnreadable
                  ? qsTranslate("Qorvane", "This folder can't be read.")
                  : qsTranslate("Qorvane", "Hold Ctrl or Shift to select several folders; double-click to open one.")
            font.pixelSize: Theme.captionSize
            font.weight: dialog.isUnreadable ? Font.DemiBold : Font.Normal
            color: dialog.isUnreadable ? Theme.text : Theme.secondaryText
        }

        Button {
            anchors.right: addButton.left
            anchors.rightMargin: Theme.unit
            anchors.bottom: parent.bottom
            text: qsTranslate("Qorvane", "Cancel")
            onClicked: dialog.close()
        }

        Button {
            id: addButton

            objectName: "addChosenFoldersButton"
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            isProminent: true
            enabled: browser.chosen.length > 0
            text: browser.selectionCount < 2 ? qsTranslate("Qorvane", "Add Folder")
                                             : qsTranslate("Qorvane", "Add %n Folders", "", browser.selectionCount)
            onClicked: dialog.accept()
        }
    }
}
