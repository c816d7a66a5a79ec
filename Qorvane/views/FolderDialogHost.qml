import QtQuick
import QorvaneViews

/// Makes a dialog for folders where the desktop has none. Only then is its module looked for: the window does
/// without.
Loader {
    id: host

    required property ContentViewState viewState

    Connections {
        target: host.viewState

        function onFolderPanelUnavailable() {
            host.source = "";
            host.setSource("FallbackFolderDialog.qml", { viewState: host.viewState });
        }
    }
}
