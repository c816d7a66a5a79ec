import QtQml
import QtQuick.Dialogs
import QorvaneViews

/// The toolkit's own dialog for a folder, for desktops without a panel; opens as soon as it is made.
FolderDialog {
    id: dialog

    required property ContentViewState viewState

    title: qsTranslate("Qorvane", "Add Folder")
    onAccepted: viewState.addFolders([selectedFolder])
    Component.onCompleted: open()
}
