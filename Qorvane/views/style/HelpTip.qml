import QtQuick

/// The short explanation of the control that declares it, shown while it `isWanted` and there is one. The tip itself
/// is made when it is wanted first: it is heavier than most of what it explains.
Loader {
    required property string text
    required property bool isWanted
    readonly property bool isShown: isWanted && text !== ""

    anchors.fill: parent
    active: false
    onIsShownChanged: if (isShown) active = true

    sourceComponent: ToolTip {}
    // In here, since Qt 6.4 can't load what is bound to its surroundings.
    onLoaded: {
        const tip = item as ToolTip;
        tip.text = Qt.binding(() => text);
        tip.visible = Qt.binding(() => isShown);
    }
}
