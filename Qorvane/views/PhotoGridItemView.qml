import QtQuick
import QorvaneStyle

/// A cell of the photo grid.
MediaCell {
    height: Theme.photoSize
}
