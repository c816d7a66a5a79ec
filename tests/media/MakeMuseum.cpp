// Writes the awkward files of tests/data. They are kept as files, since encoders change and what once was
// difficult should stay it; this program says how each was made, and makes new ones. Given the same releases
// of the libraries it writes the same bytes.

#include "media/NumberBytes.h"
#include "media/PictureFiles.h"
#include "media/PsdFile.h"

#include <QFile>

#include <lcms2.h>
#include <vips/vips.h>

#include <cstdio>
#include <functional>
#include <map>

using namespace Qorvane;

namespace {

/// Red at the top left, green at the top right, blue at the bottom left, white at the bottom right.
QImage quarters(QSize size = {48, 32})
{
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const bool isLeft = x < size.width() / 2;
            const bool isTop = y < size.height() / 2;
            picture.setPixel(x, y,
                             isTop ? (isLeft ? 0xffff0000 : 0xff00ff00) : (isLeft ? 0xff0000ff : 0xffffffff));
        }
    }
    return picture;
}

QByteArray jpeg(const QByteArray &profile = {},
                PictureFiles::JpegColour colour = PictureFiles::JpegColour::ycc)
{
    return PictureFiles::jpeg(quarters(), {colour, false, 95, profile});
}

QByteArray png()
{
    return PictureFiles::qtFile(quarters(), "png");
}

/// A profile of Display P3's primaries, or of grey, made at no particular time.
QByteArray profile(bool isGray)
{
    const cmsCIExyY white = {0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries = {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}};
    cmsToneCurve *curve = cmsBuildGamma(nullptr, 2.2);
    cmsToneCurve *curves[] = {curve, curve, curve};
    cmsHPROFILE handle =
        isGray ? cmsCreateGrayProfile(&white, curve) : cmsCreateRGBProfile(&white, &primaries, curves);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(handle, nullptr, &size);
    QByteArray bytes(qsizetype(size), Qt::Uninitialized);
    cmsSaveProfileToMem(handle, bytes.data(), &size);
    cmsCloseProfile(handle);
    cmsFreeToneCurve(curve);
    constexpr qsizetype dateAt = 24;
    constexpr qsizetype dateSize = 12;
    bytes.replace(dateAt, dateSize, QByteArray(dateSize, '\1'));
    return bytes;
}

/// `jpegBytes` with the piece of its profile numbered as the first of `count`.
QByteArray withProfilePieces(QByteArray jpegBytes, int count)
{
    constexpr qsizetype countAt = 13; // behind the name and the piece's number
    jpegBytes[jpegBytes.indexOf("ICC_PROFILE") + countAt] = char(count);
    return jpegBytes;
}

/// The checksum of PNG's chunks.
quint32 checksum(const QByteArray &bytes)
{
    quint32 sum = ~quint32(0);
    for (const char byte : bytes) {
        sum ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = sum & 1 ? sum >> 1 ^ 0xedb88320 : sum >> 1;
    }
    return ~sum;
}

QByteArray chunk(const QByteArray &kind, const QByteArray &data)
{
    const QByteArray content = kind + data;
    return big(quint32(data.size())) + content + big(checksum(content));
}

/// A PNG of the depth and kind given, with rows that already have their filter bytes.
QByteArray png(QSize size, int depth, int kind, const QByteArray &rows, const QByteArray &chunks = {})
{
    const QByteArray header = big(quint32(size.width())) + big(quint32(size.height())) + char(depth) +
                              char(kind) + QByteArray(3, '\0');
    return QByteArray("\x89PNG\r\n\x1a\n") + chunk("IHDR", header) + chunks +
           chunk("IDAT", qCompress(rows, 9).mid(4)) + chunk("IEND", {});
}

struct Tag
{
    quint16 number;
    quint16 type; ///< 3 short, 4 long
    quint32 value;
};

/// A little-endian TIFF of one strip behind its directory; what tells of size and place is added to the tags.
QByteArray tiff(QSize size, const QByteArray &samples, std::map<quint16, Tag> tags)
{
    constexpr quint32 added = 5;
    constexpr quint32 tagSize = 12;
    const auto samplesAt = quint32(8 + 2 + (tags.size() + added) * tagSize + 4);
    tags.insert({{256, {256, 4, quint32(size.width())}},
                 {257, {257, 4, quint32(size.height())}},
                 {273, {273, 4, samplesAt}},
                 {278, {278, 4, quint32(size.height())}},
                 {279, {279, 4, quint32(samples.size())}}});
    QByteArray bytes = QByteArray("II*\0\x08\0\0\0", 8) + little(quint16(tags.size()));
    for (const auto &[number, tag] : tags)
        bytes += little(tag.number) + little(tag.type) + little<quint32>(1) + little(tag.value);
    return bytes + little<quint32>(0) + samples;
}

std::map<quint16, Tag> grayTags(quint32 bits, quint32 sampleFormat)
{
    return {{258, {258, 3, bits}},
            {259, {259, 3, 1}},
            {262, {262, 3, 1}},
            {277, {277, 3, 1}},
            {339, {339, 3, sampleFormat}}};
}

/// A ramp from black at the left to white at the right, one sample of `Sample` each.
template <typename Sample>
QByteArray ramp(const std::function<Sample(int)> &sample)
{
    QByteArray samples;
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 48; ++x) {
            const Sample value = sample(x);
            samples.append(reinterpret_cast<const char *>(&value), sizeof value);
        }
    }
    return samples;
}

/// Six bits of literals after each clearing, so that codes stay three bits wide.
QByteArray gifData(const QByteArray &pixels)
{
    QByteArray data;
    quint32 bits = 0;
    int count = 0;
    const auto put = [&](quint32 code) {
        bits |= code << count;
        for (count += 3; count >= 8; count -= 8, bits >>= 8)
            data += char(bits);
    };
    constexpr quint32 clear = 4;
    constexpr quint32 end = 5;
    for (qsizetype i = 0; i < pixels.size(); ++i) {
        if (i % 2 == 0)
            put(clear);
        put(uchar(pixels[i]));
    }
    put(end);
    put(0);
    put(0);
    QByteArray blocks(1, '\2');
    for (qsizetype at = 0; at < data.size(); at += 255) {
        const QByteArray block = data.mid(at, 255);
        blocks += char(block.size()) + block;
    }
    return blocks + '\0';
}

/// Frames of the four quarters' colours, each frame with them moved on by one.
QByteArray gif(int frames, bool isInterlaced)
{
    const QSize size(48, 32);
    QByteArray bytes = QByteArray("GIF89a") + little(quint16(size.width())) + little(quint16(size.height())) +
                       QByteArray("\x91\0\0\xff\0\0\0\xff\0\0\0\xff\xff\xff\xff", 15);
    for (int frame = 0; frame < frames; ++frame) {
        QByteArray pixels;
        const auto row = [&](int y) {
            for (int x = 0; x < size.width(); ++x)
                pixels += char(((y >= size.height() / 2) * 2 + (x >= size.width() / 2) + frame) % 4);
        };
        if (isInterlaced) {
            for (const auto &[first, step] :
                 {std::pair(0, 8), std::pair(4, 8), std::pair(2, 4), std::pair(1, 2)}) {
                for (int y = first; y < size.height(); y += step)
                    row(y);
            }
        } else {
            for (int y = 0; y < size.height(); ++y)
                row(y);
        }
        bytes += QByteArray("\x21\xf9\4\0\x0a\0\0\0", 8) + ',' + QByteArray(4, '\0') +
                 little(quint16(size.width())) + little(quint16(size.height())) +
                 char(isInterlaced ? 0x40 : 0) + gifData(pixels);
    }
    return bytes + ';';
}

QByteArray animatedWebP()
{
    const QByteArray frames = gif(3, false);
    VipsImage *image =
        vips_image_new_from_buffer(frames.constData(), size_t(frames.size()), "[n=-1]", nullptr);
    void *buffer = nullptr;
    size_t size = 0;
    vips_image_write_to_buffer(image, ".webp[lossless]", &buffer, &size, nullptr);
    const QByteArray bytes(static_cast<const char *>(buffer), qsizetype(size));
    g_free(buffer);
    g_object_unref(image);
    return bytes;
}

QByteArray patched(QByteArray bytes, qsizetype at, const QByteArray &with)
{
    return bytes.replace(at, with.size(), with);
}

QByteArray grayAlphaRows()
{
    QByteArray rows;
    for (int y = 0; y < 32; ++y) {
        rows += '\0';
        for (int x = 0; x < 48; ++x)
            rows += '\x80' + QByteArray(1, char(x < 24 ? 255 : 0));
    }
    return rows;
}

QByteArray topDownBmp()
{
    const QImage picture = quarters();
    QByteArray bytes = QByteArray("BM") + little<quint32>(0) + little<quint32>(0) + little<quint32>(54) +
                       little<quint32>(40) + little<qint32>(48) + little<qint32>(-32) + little<quint16>(1) +
                       little<quint16>(32) + QByteArray(24, '\0');
    for (int y = 0; y < 32; ++y)
        bytes.append(reinterpret_cast<const char *>(picture.constScanLine(y)), 48 * 4);
    return patched(bytes, 2, little(quint32(bytes.size())));
}

QByteArray coreHeaderBmp()
{
    const QImage picture = quarters();
    QByteArray bytes = QByteArray("BM") + little<quint32>(26 + 48 * 32 * 3) + little<quint32>(0) +
                       little<quint32>(26) + little<quint32>(12) + little<quint16>(48) + little<quint16>(32) +
                       little<quint16>(1) + little<quint16>(24);
    for (int y = 31; y >= 0; --y) {
        for (int x = 0; x < 48; ++x)
            bytes += little<quint32>(picture.pixel(x, y)).left(3);
    }
    return bytes;
}

QByteArray otherPreview()
{
    const QByteArray preview = PictureFiles::jpeg(quarters({24, 16}).rgbSwapped());
    return PictureFiles::withExif(jpeg(), preview, 1);
}

void addWronglyNamed(std::map<QString, QByteArray> &files)
{
    files[QStringLiteral("jpeg-named.png")] = jpeg();
    files[QStringLiteral("png-named.jpg")] = png();
    files[QStringLiteral("png-named.tga")] = png();
    files[QStringLiteral("avif-named.heic")] = PictureFiles::vipsFile(quarters(), ".avif[Q=90]");
    files[QStringLiteral("tiff-named.nef")] = PictureFiles::vipsFile(quarters(), ".tif[compression=lzw]");
    files[QStringLiteral("text-named.jpg")] = "Dear diary, this is no picture.\n";
    files[QStringLiteral("text-named.mp4")] = "Dear diary, this is no video.\n";
    files[QStringLiteral("UPPER CASE %d #1 图.JPG")] = jpeg();
}

void addDamaged(std::map<QString, QByteArray> &files)
{
    const QByteArray large = PictureFiles::jpeg(quarters({320, 200}), {});
    const QByteArray largePng =
        PictureFiles::vipsFile(PictureFiles::testPicture(120, 80), ".png[compression=0]");
    files[QStringLiteral("empty.png")] = {};
    files[QStringLiteral("half.jpg")] = large.left(large.size() * 6 / 10);
    files[QStringLiteral("header-only.jpg")] = large.left(large.indexOf("\xff\xda") + 14);
    files[QStringLiteral("trailing.jpg")] = jpeg() + "ftypmp42 and what a phone puts behind a picture";
    files[QStringLiteral("half.png")] = largePng.left(largePng.size() / 2);
    files[QStringLiteral("wrong-checksum.png")] = patched(png(), 29, "\1\2\3\4");
    files[QStringLiteral("half.gif")] = gif(1, false).left(700);
    files[QStringLiteral("half.tif")] =
        tiff({48, 32}, ramp<uchar>([](int x) { return uchar(x * 255 / 47); }), grayTags(8, 1)).left(1000);
    files[QStringLiteral("half.psd")] = PictureFiles::psd(quarters()).left(2000);
}

void addOriented(std::map<QString, QByteArray> &files)
{
    for (int value = 0; value <= 9; ++value)
        files[QStringLiteral("orientation-%1.jpg").arg(value)] = PictureFiles::withExif(jpeg(), {}, value);
    files[QStringLiteral("orientation-6.png")] = PictureFiles::withExif(png(), {}, 6);
    files[QStringLiteral("orientation-6.tif")] =
        PictureFiles::withExif(PictureFiles::vipsFile(quarters(), ".tif[compression=deflate]"), {}, 6);
    files[QStringLiteral("orientation-6.webp")] =
        PictureFiles::withExif(PictureFiles::vipsFile(quarters(), ".webp[lossless]"), {}, 6);
}

void addColours(std::map<QString, QByteArray> &files)
{
    using PictureFiles::JpegColour;
    files[QStringLiteral("profile-p3.jpg")] = jpeg(profile(false));
    files[QStringLiteral("profile-cut.jpg")] = jpeg(profile(false).left(200));
    files[QStringLiteral("profile-noise.jpg")] = jpeg(QByteArray(300, '\x5a'));
    files[QStringLiteral("profile-gray-in-rgb.jpg")] = jpeg(profile(true));
    files[QStringLiteral("profile-rgb-in-gray.jpg")] = jpeg(profile(false), JpegColour::gray);
    files[QStringLiteral("profile-second-piece-missing.jpg")] = withProfilePieces(jpeg(profile(false)), 2);
    files[QStringLiteral("profile-noise.png")] =
        png(QSize(48, 32), 8, 4, grayAlphaRows(), chunk("iCCP", QByteArray("x\0\0noise", 8)));
    files[QStringLiteral("cmyk.jpg")] = jpeg({}, JpegColour::cmyk);
    files[QStringLiteral("gray.jpg")] = jpeg({}, JpegColour::gray);
    files[QStringLiteral("gray-alpha.png")] = png(QSize(48, 32), 8, 4, grayAlphaRows());
    files[QStringLiteral("16-bit.png")] =
        PictureFiles::qtFile(quarters().convertToFormat(QImage::Format_RGBX64), "png");
    files[QStringLiteral("16-bit.tif")] =
        tiff({48, 32}, ramp<quint16>([](int x) { return quint16(x * 65535 / 47); }), grayTags(16, 1));
    files[QStringLiteral("signed-8-bit.tif")] =
        tiff({48, 32}, ramp<qint8>([](int x) { return qint8(x * 255 / 47 - 128); }), grayTags(8, 2));
    files[QStringLiteral("float.tif")] =
        tiff({48, 32}, ramp<float>([](int x) { return float(x) / 47; }), grayTags(32, 3));
    files[QStringLiteral("1-bit.png")] = png(QSize(8, 2), 1, 0, QByteArray("\0\xf0\0\x0f", 4));
}

void addLayouts(std::map<QString, QByteArray> &files)
{
    files[QStringLiteral("interlaced.png")] = PictureFiles::vipsFile(quarters(), ".png[interlace]");
    files[QStringLiteral("interlaced.gif")] = gif(1, true);
    files[QStringLiteral("animated.gif")] = gif(3, false);
    files[QStringLiteral("animated.webp")] = animatedWebP();
    files[QStringLiteral("progressive.jpg")] =
        PictureFiles::jpeg(quarters(), {PictureFiles::JpegColour::ycc, true, 95, {}});
    files[QStringLiteral("other-preview.jpg")] = otherPreview();
    files[QStringLiteral("top-down.bmp")] = topDownBmp();
    files[QStringLiteral("core-header.bmp")] = coreHeaderBmp();
    files[QStringLiteral("comments.ppm")] =
        "P3 # red, green\n# and blue\n3\n1 255\n255 0 0  0 255 0 # here\n0 0 255\n";
    files[QStringLiteral("1x10000.png")] = PictureFiles::qtFile(PictureFiles::testPicture(1, 10000), "png");
    files[QStringLiteral("10000x1.jpg")] = PictureFiles::jpeg(PictureFiles::testPicture(10000, 1));
    files[QStringLiteral("1x1.gif")] =
        QByteArray("GIF89a\1\0\1\0\x80\0\0\xff\0\0\0\0\xff,\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;", 35);
}

void addBombs(std::map<QString, QByteArray> &files)
{
    const QByteArray side = big<quint32>(60'000);
    files[QStringLiteral("bomb.png")] = png(QSize(60'000, 60'000), 8, 2, QByteArray(1000, '\0'));
    files[QStringLiteral("bomb.jpg")] = patched(jpeg(), jpeg().indexOf("\xff\xc0") + 5, "\xea\x60\xea\x60");
    files[QStringLiteral("screen-of-65535.gif")] = patched(gif(1, false), 6, "\xff\xff\xff\xff");
    files[QStringLiteral("bomb.gif")] =
        patched(patched(gif(1, false), 6, "\xff\xff\xff\xff"), 38, "\xff\xff\xff\xff");
    files[QStringLiteral("bomb.bmp")] =
        patched(topDownBmp(), 18, little<qint32>(60'000) + little<qint32>(60'000));
    files[QStringLiteral("bomb.tif")] = tiff(QSize(60'000, 60'000), QByteArray(100, '\0'), grayTags(8, 1));
    files[QStringLiteral("bomb-64-bit.tif")] =
        tiff(QSize(15'000, 15'000), QByteArray(100, '\0'), grayTags(64, 3));
    files[QStringLiteral("bomb.psd")] = patched(PictureFiles::psd(quarters()), 14, side + side);
    files[QStringLiteral("bomb.tga")] = patched(PictureFiles::tga(quarters()), 12, "\xff\xff\xff\xff");
    files[QStringLiteral("bomb.ppm")] = "P6\n60000 60000\n255\nno pixels";
    files[QStringLiteral("bomb.hdr")] = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 60000 +X 60000\n";
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: make-museum FOLDER\n");
        return 2;
    }
    qputenv("QT_HASH_SEED", "0");
    std::map<QString, QByteArray> files;
    addWronglyNamed(files);
    addDamaged(files);
    addOriented(files);
    addColours(files);
    addLayouts(files);
    addBombs(files);
    for (const auto &[name, bytes] : files) {
        QFile file(QFile::decodeName(argv[1]) + QLatin1Char('/') + name);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            std::fprintf(stderr, "%s can't be written\n", qPrintable(file.fileName()));
            return 1;
        }
    }
    return 0;
}
