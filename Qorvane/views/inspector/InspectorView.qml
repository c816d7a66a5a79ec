import QtQuick
import QorvaneStyle
import QorvaneViews

/// The right column: what is known of the selected file.
Rectangle {
    id: inspector

    required property SelectedMedia selected

    color: Theme.window
    Accessible.role: Accessible.Pane
    Accessible.name: qsTranslate("Qorvane", "Info")

    InspectorEmptyStateView {
        objectName: "inspectorEmptyState"
        anchors.fill: parent
        visible: inspector.selected.count === 0
    }

    Label {
        objectName: "inspectorCount"
        anchors.centerIn: parent
        width: parent.width - 4 * Theme.unit
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        visible: inspector.selected.count > 1
        text: qsTranslate("Qorvane", "items_selected", "Items selected count", inspector.selected.count)
        font.pixelSize: Theme.title3Size
        color: Theme.secondaryText
    }

    InspectorCard {
        anchors.top: parent.top
        anchors.topMargin: Theme.toolbarHeight + Theme.unit
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.contentPadding
        anchors.rightMargin: Theme.contentPadding
        visible: inspector.selected.count === 1
        title: qsTranslate("Qorvane", "Info")

        Label {
            objectName: "inspectorFileName"
            width: parent.width
            text: inspector.selected.name
            elide: Text.ElideMiddle
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
    }
}
