import QtQuick
import QorvaneViews

/// Makes a dialog for folders where the desktop has none, when it is first asked for.
Loader {
    id: host

    required property ContentViewState viewState

    Connections {
        target: host.viewState

        function onFolderPanelUnavailable() {
            if (!host.item)
                host.setSource("FallbackFolderDialog.qml", { viewState: host.viewState });
            (host.item as FallbackFolderDialog).open();
        }
    }
}
