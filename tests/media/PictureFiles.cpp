#include "media/PictureFiles.h"

#include "media/decoders/MediaLibraries.h"

#include <QBuffer>
#include <QFile>
#include <QImageWriter>
#include <QtEndian>

#include <jpeglib.h>
#include <vips/vips.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exiv2/exiv2.hpp>
#include <vector>

namespace Qorvane::PictureFiles {

namespace {

template <typename Number>
void appendBig(QByteArray &bytes, Number number)
{
    const Number big = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char *>(&big), sizeof big);
}

template <typename Number>
void appendLittle(QByteArray &bytes, Number number)
{
    const Number little = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
}

void atom(QByteArray &bytes, const char *kind, const QByteArray &content)
{
    appendBig(bytes, quint32(content.size() + 8));
    bytes.append(kind, 4);
    bytes.append(content);
}

/// A row as the compressor wants it; CMYK as Adobe's programs write it, inverted.
std::vector<JSAMPLE> jpegRow(const QImage &picture, int y, JpegColour colour)
{
    std::vector<JSAMPLE> row;
    for (int x = 0; x < picture.width(); ++x) {
        const QRgb pixel = picture.pixel(x, y);
        const int red = qRed(pixel);
        const int green = qGreen(pixel);
        const int blue = qBlue(pixel);
        switch (colour) {
        case JpegColour::ycc:
            row.insert(row.end(), {JSAMPLE(red), JSAMPLE(green), JSAMPLE(blue)});
            break;
        case JpegColour::gray:
            row.push_back(JSAMPLE(qGray(pixel)));
            break;
        case JpegColour::cmyk:
            row.insert(row.end(), {JSAMPLE(red), JSAMPLE(green), JSAMPLE(blue), 255});
            break;
        }
    }
    return row;
}

} // namespace

QImage testPicture(int width, int height)
{
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool isDark = x < width / 2 && y < height / 2;
            const int scale = isDark ? 64 : 255;
            picture.setPixel(x, y, qRgb(x * scale / width, y * scale / height, 128 * scale / 255));
        }
    }
    return picture;
}

QByteArray jpeg(const QImage &picture, const JpegOptions &options)
{
    jpeg_compress_struct compress = {};
    jpeg_error_mgr errors = {};
    compress.err = jpeg_std_error(&errors);
    jpeg_create_compress(&compress);
    unsigned char *memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&compress, &memory, &size);
    compress.image_width = unsigned(picture.width());
    compress.image_height = unsigned(picture.height());
    compress.input_components = options.colour == JpegColour::gray  ? 1
                                : options.colour == JpegColour::ycc ? 3
                                                                    : 4;
    compress.in_color_space = options.colour == JpegColour::gray  ? JCS_GRAYSCALE
                              : options.colour == JpegColour::ycc ? JCS_RGB
                                                                  : JCS_CMYK;
    jpeg_set_defaults(&compress);
    jpeg_set_quality(&compress, options.quality, TRUE);
    if (options.colour == JpegColour::cmyk)
        compress.write_Adobe_marker = TRUE;
    if (options.isProgressive)
        jpeg_simple_progression(&compress);
    jpeg_start_compress(&compress, TRUE);
    if (!options.iccProfile.isEmpty())
        jpeg_write_icc_profile(&compress, reinterpret_cast<const JOCTET *>(options.iccProfile.constData()),
                               unsigned(options.iccProfile.size()));
    for (int y = 0; y < picture.height(); ++y) {
        std::vector<JSAMPLE> row = jpegRow(picture, y, options.colour);
        JSAMPROW rows[] = {row.data()};
        jpeg_write_scanlines(&compress, rows, 1);
    }
    jpeg_finish_compress(&compress);
    jpeg_destroy_compress(&compress);
    const QByteArray bytes(reinterpret_cast<const char *>(memory), qsizetype(size));
    std::free(memory);
    return bytes;
}

QByteArray withExif(const QByteArray &jpegBytes, const QByteArray &thumbnail, int orientation)
{
    MediaLibraries::ensureReady();
    const auto image = Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte *>(jpegBytes.constData()),
                                                 jpegBytes.size());
    image->readMetadata();
    Exiv2::ExifData &data = image->exifData();
    data["Exif.Image.Orientation"] = uint16_t(orientation);
    if (!thumbnail.isEmpty()) {
        Exiv2::ExifThumb(data).setJpegThumbnail(reinterpret_cast<const Exiv2::byte *>(thumbnail.constData()),
                                                size_t(thumbnail.size()));
    }
    image->writeMetadata();
    Exiv2::BasicIo &io = image->io();
    io.open();
    QByteArray bytes(qsizetype(io.size()), Qt::Uninitialized);
    io.read(reinterpret_cast<Exiv2::byte *>(bytes.data()), bytes.size());
    return bytes;
}

QByteArray qtFile(const QImage &picture, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    return writer.write(picture) ? bytes : QByteArray();
}

QByteArray vipsFile(const QImage &picture, const char *suffix)
{
    MediaLibraries::ensureReady();
    const QImage rgb =
        picture.convertToFormat(picture.hasAlphaChannel() ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    const int bands = picture.hasAlphaChannel() ? 4 : 3;
    QByteArray samples;
    for (int y = 0; y < rgb.height(); ++y)
        samples.append(reinterpret_cast<const char *>(rgb.constScanLine(y)), qsizetype(rgb.width()) * bands);
    VipsImage *memory = vips_image_new_from_memory(samples.constData(), size_t(samples.size()), rgb.width(),
                                                   rgb.height(), bands, VIPS_FORMAT_UCHAR);
    VipsImage *image = nullptr;
    vips_copy(memory, &image, "interpretation", VIPS_INTERPRETATION_sRGB, nullptr);
    void *buffer = nullptr;
    size_t size = 0;
    vips_image_write_to_buffer(image, suffix, &buffer, &size, nullptr);
    const QByteArray bytes(static_cast<const char *>(buffer), qsizetype(size));
    g_free(buffer);
    g_object_unref(image);
    g_object_unref(memory);
    return bytes;
}

QByteArray tga(const QImage &picture)
{
    QByteArray bytes(12, '\0');
    bytes[2] = 2;
    appendLittle(bytes, quint16(picture.width()));
    appendLittle(bytes, quint16(picture.height()));
    bytes.append("\x18\0", 2);
    for (int y = picture.height() - 1; y >= 0; --y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            bytes.append(char(qBlue(pixel))).append(char(qGreen(pixel))).append(char(qRed(pixel)));
        }
    }
    return bytes;
}

QByteArray quickTimeImage(const char *codec, const QByteArray &payload, QSize size, int depth)
{
    QByteArray description;
    appendBig(description, quint32(86));
    description.append(codec, 4);
    description.append(QByteArray(24, '\0'));
    appendBig(description, quint16(size.width()));
    appendBig(description, quint16(size.height()));
    description.append(QByteArray(46, '\0'));
    appendBig(description, quint16(depth));
    appendBig(description, quint16(0xffff));
    QByteArray bytes;
    atom(bytes, "idsc", description);
    atom(bytes, "idat", payload);
    return bytes;
}

QByteArray icns(const QByteArray &png)
{
    QByteArray bytes("icns", 4);
    appendBig(bytes, quint32(png.size() + 16));
    bytes.append("ic07", 4); // 128 x 128
    appendBig(bytes, quint32(png.size() + 8));
    return bytes + png;
}

QByteArray softimagePic(const QImage &picture)
{
    QByteArray bytes("\x53\x80\xf6\x34", 4);
    bytes.append(QByteArray(84, '\0'));
    bytes.append("PICT", 4);
    appendBig(bytes, quint16(picture.width()));
    appendBig(bytes, quint16(picture.height()));
    bytes.append(QByteArray(8, '\0'));
    bytes.append(QByteArray("\0\x08\x02\xe0", 4)); // the only packet: 8 bits, mixed runs, red, green and blue
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            bytes.append('\0')
                .append(char(qRed(pixel)))
                .append(char(qGreen(pixel)))
                .append(char(qBlue(pixel)));
        }
    }
    return bytes;
}

QByteArray psd(const QImage &picture)
{
    QByteArray bytes("8BPS\0\1\0\0\0\0\0\0\0\3", 14);
    appendBig(bytes, quint32(picture.height()));
    appendBig(bytes, quint32(picture.width()));
    appendBig(bytes, quint16(8));
    appendBig(bytes, quint16(3));
    bytes.append(QByteArray(12, '\0')); // no palette, no resources, no layers
    appendBig(bytes, quint16(0));       // plain
    for (const int shift : {16, 8, 0}) {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                bytes.append(char(picture.pixel(x, y) >> shift));
        }
    }
    return bytes;
}

namespace {

struct TiffEntry
{
    quint16 tag;
    quint16 type; ///< 1 byte, 2 text, 3 short, 4 long
    quint32 count;
    quint32 value; ///< or its offset
};

void appendDirectory(QByteArray &bytes, const std::vector<TiffEntry> &entries)
{
    appendLittle(bytes, quint16(entries.size()));
    for (const TiffEntry &entry : entries) {
        appendLittle(bytes, entry.tag);
        appendLittle(bytes, entry.type);
        appendLittle(bytes, entry.count);
        appendLittle(bytes, entry.value);
    }
    appendLittle(bytes, quint32(0));
}

/// Red, green, green, blue; 16 bits a sample.
QByteArray mosaic(const QImage &picture)
{
    QByteArray samples;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            const int value = x % 2 != y % 2 ? qGreen(pixel) : y % 2 == 0 ? qRed(pixel) : qBlue(pixel);
            appendLittle(samples, quint16(value * 257));
        }
    }
    return samples;
}

} // namespace

QByteArray dng(const QImage &picture, const QByteArray &preview, QSize previewSize, int orientation)
{
    const QByteArray samples = mosaic(picture);
    constexpr quint32 entrySize = 12;
    constexpr quint32 headerSize = 8;
    constexpr quint32 mainCount = 14;
    constexpr quint32 rawCount = 12;
    const quint32 subOffset = headerSize + 2 + mainCount * entrySize + 4;
    const quint32 textOffset = subOffset + 2 + rawCount * entrySize + 4;
    const quint32 matrixOffset = textOffset + 8;
    const quint32 previewOffset = matrixOffset + 9 * 8;
    const auto padded = quint32((preview.size() + 1) & ~1);
    const quint32 samplesOffset = previewOffset + padded;

    QByteArray bytes("II*\0", 4);
    appendLittle(bytes, headerSize);
    appendDirectory(bytes, {{0x00fe, 4, 1, 1},
                            {0x0100, 4, 1, quint32(previewSize.width())},
                            {0x0101, 4, 1, quint32(previewSize.height())},
                            {0x0103, 3, 1, 7},
                            {0x0106, 3, 1, 6},
                            {0x010f, 2, 8, textOffset},
                            {0x0110, 2, 8, textOffset},
                            {0x0111, 4, 1, previewOffset},
                            {0x0112, 3, 1, quint32(orientation)},
                            {0x0115, 3, 1, 3},
                            {0x0117, 4, 1, quint32(preview.size())},
                            {0x014a, 4, 1, subOffset},
                            {0xc612, 1, 4, 0x00000401},
                            {0xc621, 10, 9, matrixOffset}});
    appendDirectory(bytes, {{0x00fe, 4, 1, 0},
                            {0x0100, 4, 1, quint32(picture.width())},
                            {0x0101, 4, 1, quint32(picture.height())},
                            {0x0102, 3, 1, 16},
                            {0x0103, 3, 1, 1},
                            {0x0106, 3, 1, 32803},
                            {0x0111, 4, 1, samplesOffset},
                            {0x0115, 3, 1, 1},
                            {0x0116, 4, 1, quint32(picture.height())},
                            {0x0117, 4, 1, quint32(samples.size())},
                            {0x828d, 3, 2, 0x00020002},
                            {0x828e, 1, 4, 0x02010100}});
    bytes.append("Qorvane", 8);
    for (int i = 0; i < 9; ++i) { // from XYZ to the camera: none
        appendLittle(bytes, qint32(i % 4 == 0 ? 1 : 0));
        appendLittle(bytes, qint32(1));
    }
    bytes.append(preview);
    bytes.append(QByteArray(padded - quint32(preview.size()), '\0'));
    bytes.append(samples);
    return bytes;
}

QByteArray x3f(const QList<QByteArray> &jpegs, int rotationDegrees)
{
    QByteArray bytes("FOVb", 4);
    bytes.append(QByteArray(32, '\0'));
    appendLittle(bytes, quint32(rotationDegrees));
    for (const QByteArray &jpegBytes : jpegs) {
        bytes.append("\xff\xd8\xff\x00noise", 9);
        bytes.append(jpegBytes);
    }
    return bytes;
}

QString write(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes)
{
    const QString path = folder.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return {};
    return path;
}

} // namespace Qorvane::PictureFiles
