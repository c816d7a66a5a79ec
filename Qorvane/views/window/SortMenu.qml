import QtQuick
import QorvaneStyle
import QorvaneViews

/// What the photographs are sorted by, and which end comes first.
Menu {
    id: menu

    required property Sorting sorting

    title: qsTranslate("Qorvane", "Sort")

    MenuHeading {
        text: qsTranslate("Qorvane", "Sort by")
    }
    MenuItem {
        objectName: "sortByFileName"
        text: qsTranslate("Qorvane", "File Name")
        isChoice: true
        isChosen: menu.sorting.criterion === Sorting.FileName
        onTriggered: menu.sorting.criterion = Sorting.FileName
    }
    MenuItem {
        objectName: "sortByCreationDate"
        text: qsTranslate("Qorvane", "Creation Date")
        isChoice: true
        isChosen: menu.sorting.criterion === Sorting.CreationDate
        onTriggered: menu.sorting.criterion = Sorting.CreationDate
    }
    MenuItem {
        objectName: "sortByModificationDate"
        text: qsTranslate("Qorvane", "Modification Date")
        isChoice: true
        isChosen: menu.sorting.criterion === Sorting.ModificationDate
        onTriggered: menu.sorting.criterion = Sorting.ModificationDate
    }
    MenuItem {
        objectName: "sortByRating"
        text: qsTranslate("Qorvane", "Rating")
        isChoice: true
        isChosen: menu.sorting.criterion === Sorting.Rating
        onTriggered: menu.sorting.criterion = Sorting.Rating
    }

    MenuSeparator {}

    MenuHeading {
        text: qsTranslate("Qorvane", "Order")
    }
    MenuItem {
        objectName: "sortAscending"
        text: qsTranslate("Qorvane", "Ascending")
        isChoice: true
        isChosen: menu.sorting.order === Sorting.Ascending
        onTriggered: menu.sorting.order = Sorting.Ascending
    }
    MenuItem {
        objectName: "sortDescending"
        text: qsTranslate("Qorvane", "Descending")
        isChoice: true
        isChosen: menu.sorting.order === Sorting.Descending
        onTriggered: menu.sorting.order = Sorting.Descending
    }
}
