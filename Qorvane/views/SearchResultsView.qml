import QtQuick
import QorvaneStyle
import QorvaneViews

/// The middle column: the photographs of what is selected, or the hits of a search.
FocusScope {
    id: view

    required property ContentViewState viewState
    readonly property int page: viewState.page
    readonly property bool isEmpty: page === GridPage.EmptyTag || page === GridPage.EmptyRating
                                    || page === GridPage.EmptyFolder

    MediaGrid {
        objectName: "photoGrid"
        anchors.fill: parent
        focus: visible
        visible: view.page === GridPage.Photos
        media: view.viewState.photos
        rowPitch: 210

        delegate: PhotoGridItemView {
            id: photo

            width: (GridView.view as MediaGrid).columnWidth
            height: 200
            onClicked: isCommandHeld => (photo.GridView.view as MediaGrid).select(photo.index, isCommandHeld)
        }
    }

    MediaGrid {
        objectName: "resultsGrid"
        anchors.fill: parent
        focus: visible
        visible: view.page === GridPage.Results
        media: view.viewState.results
        rowPitch: 156

        delegate: SearchResultItemView {
            id: result

            width: (GridView.view as MediaGrid).columnWidth
            height: 140
            onClicked: isCommandHeld => (result.GridView.view as MediaGrid).select(result.index, isCommandHeld)
        }
    }

    BusyIndicator {
        anchors.centerIn: parent
        visible: view.page === GridPage.Loading
        running: visible
    }

    SearchingPage {
        objectName: "searchingPage"
        anchors.fill: parent
        visible: view.page === GridPage.Searching
    }

    MessagePage {
        objectName: "noResultsPage"
        anchors.fill: parent
        visible: view.page === GridPage.NoResults
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
        message: view.page === GridPage.EmptyTag ? qsTranslate("Qorvane", "该标签下没有媒体文件")
               : view.page === GridPage.EmptyRating ? qsTranslate("Qorvane", "No media files with this rating")
               : qsTranslate("Qorvane", "No media files in this folder")
    }

    NothingSelectedPage {
        objectName: "nothingSelectedPage"
        anchors.fill: parent
        visible: view.page === GridPage.NothingSelected
        isLibraryEmpty: view.viewState.folders.count === 0
        onAddFolderRequested: view.viewState.chooseFolders()
    }
}
