#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QTemporaryDir>

namespace Qorvane::PictureFiles {

/// A picture with a gradient in each channel and a dark top-left quarter, so that a turned, mirrored or
/// channel-swapped copy differs from it.
QImage testPicture(int width, int height);

enum class JpegColour { ycc, gray, cmyk };

struct JpegOptions
{
    JpegColour colour = JpegColour::ycc;
    bool isProgressive = false;
    int quality = 95;
    QByteArray iccProfile;
};

QByteArray jpeg(const QImage &picture, const JpegOptions &options = {});

/// `jpegBytes` with an EXIF block that holds `thumbnail` (nothing when empty) and `orientation`.
QByteArray withExif(const QByteArray &jpegBytes, const QByteArray &thumbnail, int orientation);

/// By Qt's writer of the format ("png", "bmp", "ppm", ...).
QByteArray qtFile(const QImage &picture, const char *format);

/// By libvips, whose suffix may carry options (".tif[compression=lzw]").
QByteArray vipsFile(const QImage &picture, const char *suffix);

/// Uncompressed, rows from the bottom up as the format has them by default.
QByteArray tga(const QImage &picture);
/// A QuickTime image: a description of `codec` and `payload`.
QByteArray quickTimeImage(const char *codec, const QByteArray &payload, QSize size, int depth);
/// An icon family of one PNG.
QByteArray icns(const QByteArray &png);
/// Mixed run-length coded RGB.
QByteArray softimagePic(const QImage &picture);
/// Run-length coded 8-bit RGB, version 1.
QByteArray psd(const QImage &picture);
/// A DNG: a colour filter mosaic of `picture` with `preview`, a JPEG, as its reduced picture.
QByteArray dng(const QImage &picture, const QByteArray &preview, QSize previewSize, int orientation);
/// Something that begins like an X3F and holds `jpegs` between noise.
QByteArray x3f(const QList<QByteArray> &jpegs, int rotationDegrees);

/// Writes `bytes` into `folder` under `name`; the whole path.
QString write(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes);

} // namespace Qorvane::PictureFiles
