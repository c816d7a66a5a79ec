import QtQuick
import QtQuick.Templates as T
import QorvaneStyle

/// The small mark that unfolds a row.
T.AbstractButton {
    id: control

    required property bool isExpanded
    property color ink: Theme.secondaryText

    implicitWidth: 18
    implicitHeight: 22
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.Button
    Accessible.name: isExpanded ? qsTranslate("Qorvane", "Collapse") : qsTranslate("Qorvane", "Expand")

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: control.isExpanded ? "chevron.down" : "chevron.right"
            size: 11
            color: control.ink
        }
    }
}
