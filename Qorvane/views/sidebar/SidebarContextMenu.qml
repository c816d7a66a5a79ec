import QorvaneStyle
import QorvaneViews

/// What can be done with a folder or a tag of the sidebar.
Menu {
    id: control

    required property SidebarMenu menu

    objectName: "sidebarMenu"
    title: qsTranslate("Qorvane", "Sidebar")

    MenuItem {
        objectName: "removeFromFavorites"
        text: qsTranslate("Qorvane", "Remove from Favorites")
        isOffered: control.menu.offersRemoveFromFavorites
        onTriggered: control.menu.removeFromFavorites()
    }

    MenuItem {
        objectName: "addToFavorites"
        text: qsTranslate("Qorvane", "Add to Favorites")
        isOffered: control.menu.offersAddToFavorites
        onTriggered: control.menu.addToFavorites()
    }

    MenuSeparator {
        isOffered: control.menu.isFolder
    }

    MenuItem {
        objectName: "openInFinder"
        text: qsTranslate("Qorvane", "Open in Finder")
        isOffered: control.menu.isFolder
        onTriggered: control.menu.openInFinder()
    }

    MenuSeparator {
        isOffered: control.menu.isFolder && control.menu.offersDelete
    }

    MenuItem {
        objectName: "delete"
        text: qsTranslate("Qorvane", "Delete")
        isOffered: control.menu.offersDelete
        isDestructive: true
        onTriggered: control.menu.remove()
    }
}
