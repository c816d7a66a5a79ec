pragma ComponentBehavior: Bound

import QtQuick
import QorvaneStyle
import QorvaneViews

/// The middle column: the photographs of what is selected, or the hits of a search.
FocusScope {
    id: view

    required property ContentPages pages
    required property Sorting sorting
    required property SearchController search
    required property MediaActions actions
    required property KeyboardFocus keys
    required property bool isLibraryEmpty
    /// Left free on either side of the grids, where the column is wider than they may be.
    property int sideMargin: 0
    readonly property int page: pages.page
    readonly property bool isEmpty: page === ContentPage.EmptyTag || page === ContentPage.EmptyRating
                                    || page === ContentPage.EmptyFolder

    /// A file was opened: the one that is selected.
    signal opened
    signal addFolderRequested

    MediaGrid {
        id: photos

        gridName: "photoGrid"
        anchors.fill: parent
        sideMargin: view.sideMargin
        focus: visible
        visible: view.page === ContentPage.Photos
        media: view.pages.photos
        keys: view.keys
        identity: "grid-" + view.sorting.criterion + view.sorting.order + view.pages.scope
        rowPitch: Theme.photoSize + Theme.photoGap
        pictureWidth: Theme.photoSize
        pictureHeight: Theme.photoSize
        onOpened: view.opened()
        onMenuRequested: (path, ground, position) => menu.openAt(path, ground, position)

        delegate: PhotoGridItemView {
            grid: photos
        }
    }

    MediaGrid {
        id: results

        gridName: "resultsGrid"
        anchors.fill: parent
        sideMargin: view.sideMargin
        focus: visible
        visible: view.page === ContentPage.Results
        media: view.pages.results
        keys: view.keys
        identity: view.search.isSearching ? "searching" : "found"
        rowPitch: Theme.hitHeight + Theme.hitGap
        pictureWidth: Theme.hitWidth
        pictureHeight: Theme.hitPictureHeight
        onOpened: view.opened()
        onMenuRequested: (path, ground, position) => menu.openAt(path, ground, position)

        delegate: SearchResultItemView {
            grid: results
        }
    }

    MediaCellMenu {
        id: menu

        actions: view.actions
    }

    BusyIndicator {
        objectName: "loadingPage"
        anchors.centerIn: parent
        visible: view.page === ContentPage.Loading
        running: visible
    }

    SearchingPage {
        objectName: "searchingPage"
        anchors.fill: parent
        visible: view.page === ContentPage.Searching
    }

    MessagePage {
        objectName: "noResultsPage"
        anchors.fill: parent
        visible: view.page === ContentPage.NoResults
        iconName: "magnifyingglass"
        message: qsTranslate("Qorvane", "没有找到匹配的图片")
        messageSize: Theme.headlineSize
        messageWeight: Font.DemiBold
        hint: qsTranslate("Qorvane", "尝试使用不同的关键词")
    }

    MessagePage {
        objectName: "emptyPage"
        anchors.fill: parent
        visible: view.isEmpty
        message: view.page === ContentPage.EmptyTag ? qsTranslate("Qorvane", "该标签下没有媒体文件")
               : view.page === ContentPage.EmptyRating ? qsTranslate("Qorvane", "No media files with this rating")
               : qsTranslate("Qorvane", "No media files in this folder")
    }

    NothingSelectedPage {
        objectName: "nothingSelectedPage"
        anchors.fill: parent
        visible: view.page === ContentPage.NothingSelected
        isLibraryEmpty: view.isLibraryEmpty
        onAddFolderRequested: view.addFolderRequested()
    }
}
