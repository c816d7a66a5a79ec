import QtQuick
import QorvaneStyle
import QorvaneViews

/// A cell of the photo grid.
MediaCell {
    height: Theme.photoSize
}
