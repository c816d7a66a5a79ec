import QtQuick
import QorvaneViews

/// Makes a dialog for folders where the desktop has none, when it is first asked for.
Loader {
    id: host

    required property FolderAdding folderAdding

    Connections {
        target: host.folderAdding

        function onPanelUnavailable() {
            if (!host.item)
                host.setSource("FallbackFolderDialog.qml", { folderAdding: host.folderAdding });
            (host.item as FallbackFolderDialog).open();
        }
    }
}
