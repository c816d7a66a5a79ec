import QtQuick
import QorvaneStyle
import QorvaneViews

/// A row of the sidebar, whatever stands in it.
// No button or delegate of the toolkit's: those give themselves roles that a tree's rows don't have.
Item {
    id: row

    required property Sidebar sidebar
    required property bool showsFocus
    required property int index
    required property int kind
    required property string name
    required property int depth
    required property bool hasChildren
    required property bool isExpanded
    required property bool isSelected
    required property bool isFavorite
    required property int runState
    required property double progress
    required property string percent
    required property string detail
    required property string count
    required property string spoken
    /// Asked for while it matters only: it changes with every step of a scroll.
    required property bool isInView
    readonly property bool isRunning: runState === SidebarListModel.Thumbnails || runState === SidebarListModel.Vectors
    property bool isPooled: false
    readonly property bool isSelectable: kind !== SidebarListModel.Header && kind !== SidebarListModel.NoTags
    readonly property string expansion: !hasChildren ? ""
                                        : isExpanded ? qsTranslate("Qorvane", "Expanded")
                                                     : qsTranslate("Qorvane", "Collapsed")

    /// The pointer does something here.
    signal pointedAt

    implicitHeight: kind === SidebarListModel.Header ? Theme.sidebarHeaderHeight : Theme.rowHeight
    ListView.onPooled: isPooled = true
    ListView.onReused: isPooled = false
    Accessible.role: isSelectable ? Accessible.TreeItem
                     : kind === SidebarListModel.Header ? Accessible.Heading : Accessible.StaticText
    Accessible.name: spoken
    Accessible.description: expansion === "" || detail === "" ? expansion + detail
                            : qsTranslate("Qorvane", "%1, %2").arg(expansion).arg(detail)
    Accessible.selectable: isSelectable
    Accessible.selected: isSelected
    Accessible.focusable: isSelectable
    Accessible.focused: activeFocus
    Accessible.onPressAction: sidebar.activate(index)

    Rectangle {
        x: Theme.unit
        width: row.width - 2 * Theme.unit
        height: row.height
        radius: Theme.rowRadius
        color: row.isSelected ? Theme.accentFill
               : !row.isSelectable ? "transparent"
               : tap.pressed ? Theme.pressed : hover.hovered ? Theme.hover : "transparent"
        border.width: row.showsFocus && !row.isSelected ? Theme.focusStroke : 0
        border.color: Theme.accent

        Rectangle {
            anchors.fill: parent
            anchors.margins: Theme.focusStroke
            radius: Theme.rowRadius - 2
            color: "transparent"
            border.width: 1.5
            border.color: Theme.accentInk
            visible: row.showsFocus && row.isSelected
        }
    }

    HoverHandler {
        id: hover
    }

    TapHandler {
        id: tap

        onTapped: {
            row.pointedAt();
            row.sidebar.activate(row.index);
        }
    }

    // All of them, of which one shows: a row that is used again for another kind has nothing to make then.
    Item {
        anchors.fill: parent

        SidebarWords {
            anchors.fill: parent
            visible: !row.isSelectable
            text: row.name
            isHeader: row.kind === SidebarListModel.Header
        }

        FolderRow {
            anchors.fill: parent
            visible: row.kind === SidebarListModel.Favorite || row.kind === SidebarListModel.LibraryFolder
            name: row.name
            // Favourites have no sub-folders to unfold, and no room for a mark that would.
            isFlat: row.kind === SidebarListModel.Favorite
            depth: row.depth
            hasChildren: row.hasChildren
            isExpanded: row.isExpanded
            isSelected: row.isSelected
            isFavorite: row.isFavorite
            runState: row.runState
            progress: row.progress
            percent: row.percent
            isInView: row.isInView && !row.isPooled
            onToggled: {
                row.pointedAt();
                row.sidebar.toggle(row.index);
            }
        }

        RatingRow {
            anchors.fill: parent
            visible: row.kind === SidebarListModel.Rating
            stars: row.name
            count: row.count
            isSelected: row.isSelected
        }

        TagRow {
            anchors.fill: parent
            visible: row.kind === SidebarListModel.Tag
            name: row.name
            count: row.count
            isSelected: row.isSelected
        }
    }

    HelpTip {
        text: row.detail
        isWanted: hover.hovered
    }
}
