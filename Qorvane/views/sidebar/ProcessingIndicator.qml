import QtQuick
import QorvaneStyle
import QorvaneViews

/// A folder's background run: a ring and a percentage while it runs, a check mark once it is done.
Row {
    id: indicator

    required property int runState
    required property double progress
    /// The progress in words: "62%".
    required property string percent
    /// Out of view nothing turns.
    property bool isInView: true
    /// Stands on a selected row, where everything is drawn in one ink.
    property bool standsOnAccent: false

    /// Whether there is room for the words.
    property bool hasCaption: true
    /// With its caption.
    readonly property double fullWidth: ring.width + spacing + caption.implicitWidth

    readonly property bool isRunning: runState === SidebarListModel.Thumbnails
                                      || runState === SidebarListModel.Vectors
    readonly property string stage: runState === SidebarListModel.Thumbnails
                                    ? qsTranslate("Qorvane", "Preview") : qsTranslate("Qorvane", "AI Analysis")
    readonly property color ink: standsOnAccent ? Theme.accentInk
                                 : runState === SidebarListModel.Thumbnails ? Theme.orange : Theme.blue

    spacing: 4

    ProgressRing {
        id: ring

        width: 16
        height: 16
        anchors.verticalCenter: parent.verticalCenter
        visible: indicator.isRunning
        progress: indicator.progress
        sweepDuration: Theme.ring
        color: indicator.ink
        isInView: indicator.isInView
        Accessible.role: Accessible.ProgressBar
        Accessible.name: caption.text
    }

    Label {
        id: caption

        anchors.verticalCenter: parent.verticalCenter
        visible: indicator.isRunning && indicator.hasCaption
        text: indicator.stage + " " + indicator.percent
        font.pixelSize: Theme.caption2Size
        color: indicator.ink
    }

    Item {
        objectName: "completedMark"
        width: 16
        height: 16
        anchors.verticalCenter: parent.verticalCenter
        visible: indicator.runState === SidebarListModel.Completed

        Icon {
            objectName: "checkMark"
            anchors.centerIn: parent
            name: "checkmark"
            size: Theme.caption2Size
            color: indicator.standsOnAccent ? Theme.accentInk : Theme.green
        }
    }
}
