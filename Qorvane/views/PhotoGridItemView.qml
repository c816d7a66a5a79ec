import QtQuick

/// A cell of the photo grid.
MediaCell {
    height: 200
    pictureWidth: 200
    pictureHeight: 200
}
