#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

#include <functional>

extern "C" {
#include <libavutil/pixfmt.h>
}

namespace Qorvane {

/// A small video for the tests to make. The fields' own values give one second of black MPEG-4 in which every
/// frame is a key frame.
struct TestVideo
{
    QByteArray encoder = "mpeg4";
    AVPixelFormat pixelFormat = AV_PIX_FMT_YUV420P;
    /// The matrix the colours are encoded with, and whether the file says so.
    AVColorSpace matrix = AVCOL_SPC_SMPTE170M;
    bool isMatrixTold = false;
    QSize size = {64, 48};
    QSize pixelShape = {1, 1}; ///< width to height
    int framesPerSecond = 10;
    int frameCount = 10;
    /// Quarter turns clockwise that the track asks for.
    int quarterTurns = 0;
    /// Whether the track asks to be mirrored left to right, before it is turned.
    bool isMirrored = false;
    /// Whether the container calls every frame a key frame, whatever it is.
    bool isEveryFrameCalledKey = false;
    /// Whether the track is a cover: a still that belongs to the file, not a picture of it.
    bool isCover = false;
    std::function<QImage(int index)> picture;
    std::function<bool(int index)> isKeyFrame = [](int) { return true; };
};

/// Writes it to `path`, in the container that the extension stands for; a failure is the running test's
/// failure.
void writeTestVideo(const QString &path, const TestVideo &video);

/// A picture of one colour.
QImage plainPicture(QSize size, QColor colour);

/// A picture of four colours: red at the top left, green at the top right, blue at the bottom left, white at
/// the bottom right.
QImage quarteredPicture(QSize size);

} // namespace Qorvane
