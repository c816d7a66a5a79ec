import QtQuick
import QorvaneStyle

/// The inspector with nothing selected.
MessagePage {
    iconName: "photo.on.rectangle.angled"
    iconSize: 36
    message: qsTranslate("Qorvane", "Inspector.Empty.Title")
    messageSize: Theme.title3Size
    messageWeight: Font.DemiBold
    hint: qsTranslate("Qorvane", "Inspector.Empty.Subtitle")
    padding: 2 * Theme.unit
    spacing: Theme.unit
}
