import QtQuick
import QtQuick.Templates as T
import QorvaneStyle
import QorvaneViews

/// The library's folders, unfolded as far as the user wants.
ListView {
    id: list

    required property ContentViewState viewState

    clip: true
    boundsBehavior: Flickable.StopAtBounds
    model: viewState.folders
    Accessible.role: Accessible.Tree
    Accessible.name: qsTranslate("Qorvane", "照片库")
    T.ScrollBar.vertical: ScrollBar {}

    delegate: FolderRow {
        width: (ListView.view as FolderList).width
        viewState: (ListView.view as FolderList).viewState
    }
}
