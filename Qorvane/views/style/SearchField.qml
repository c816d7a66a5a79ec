import QtQuick
import QtQuick.Templates as T

/// A field with a magnifier and, while it holds text, a button that empties it. Escape empties it too.
T.TextField {
    id: control

    /// Escape in the empty field.
    signal abandoned

    implicitWidth: 230
    implicitHeight: Theme.controlHeight
    leftPadding: 30
    rightPadding: clearButton.visible ? 30 : Theme.unit
    verticalAlignment: TextInput.AlignVCenter
    font.pixelSize: Theme.bodySize
    color: Theme.text
    selectionColor: Theme.accentFill
    selectedTextColor: Theme.accentInk
    placeholderTextColor: Theme.secondaryText
    selectByMouse: true
    inputMethodHints: Qt.ImhNoPredictiveText
    Accessible.role: Accessible.EditableText
    Accessible.name: placeholderText
    Accessible.searchEdit: true
    Keys.onEscapePressed: length > 0 ? clear() : abandoned()

    background: Rectangle {
        radius: Theme.fieldRadius
        color: Theme.field
        border.width: control.activeFocus ? Theme.focusStroke : 0
        border.color: Theme.accent
    }

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        x: Theme.unit
        name: "magnifyingglass"
        color: Theme.secondaryText
        size: 16
    }

    Label {
        anchors.fill: parent
        anchors.leftMargin: control.leftPadding
        anchors.rightMargin: control.rightPadding
        verticalAlignment: Text.AlignVCenter
        text: control.placeholderText
        color: control.placeholderTextColor
        visible: control.length === 0 && control.preeditText.length === 0
        Accessible.ignored: true
    }

    ToolButton {
        id: clearButton

        objectName: "clearSearchButton"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        implicitHeight: 26
        implicitWidth: 28
        text: qsTranslate("Qorvane", "Clear Search")
        iconName: "xmark.circle.fill"
        iconColor: Theme.secondaryText
        iconSize: 16
        visible: control.length > 0
        onClicked: {
            // It hides with the text, and would take the keys along.
            if (activeFocus)
                control.forceActiveFocus(Qt.OtherFocusReason);
            control.clear();
        }
    }
}
