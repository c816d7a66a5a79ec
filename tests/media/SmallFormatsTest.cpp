// Formats without an encoder on every machine: each test writes a valid file by hand.

#include "media/ImageSource.h"
#include "media/NumberBytes.h"
#include "media/PictureFiles.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qorvane;

namespace {

/// Four by two pixels: red, green, blue, white; black, yellow, magenta, cyan.
const std::vector<QRgb> colours = {0xffff0000, 0xff00ff00, 0xff0000ff, 0xffffffff,
                                   0xff000000, 0xffffff00, 0xffff00ff, 0xff00ffff};
constexpr int width = 4;
constexpr int height = 2;

QRgb colourAt(int x, int y)
{
    return colours[size_t(y * width + x)];
}

/// One picture of an icon: 32 bits, from the bottom up, then the mask that older programs want.
QByteArray iconPicture()
{
    QByteArray bytes = little<quint32>(40) + little<qint32>(width) + little<qint32>(height * 2) +
                       little<quint16>(1) + little<quint16>(32) + QByteArray(24, '\0');
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x)
            bytes += little<quint32>(colourAt(x, y));
    }
    return bytes + QByteArray(height * 4, '\0');
}

/// An icon (`kind` 1) or a cursor (2), whose last two fields are then its hot spot.
QByteArray icon(quint16 kind, const QByteArray &twoFields)
{
    const QByteArray picture = iconPicture();
    return little<quint16>(0) + little(kind) + little<quint16>(1) + char(width) + char(height) +
           QByteArray(2, '\0') + twoFields + little(quint32(picture.size())) + little<quint32>(22) + picture;
}

QByteArray sgi(bool isPacked)
{
    QByteArray bytes = big<quint16>(0x01da) + char(isPacked) + '\1' + big<quint16>(3) + big(quint16(width)) +
                       big(quint16(height)) + big<quint16>(3) + big<quint32>(0) + big<quint32>(255);
    bytes += QByteArray(512 - bytes.size(), '\0');
    QByteArray starts;
    QByteArray lengths;
    QByteArray rows;
    const qsizetype rowsAt = 512 + (isPacked ? 2 * 4 * 3 * height : 0);
    for (const int shift : {16, 8, 0}) {
        for (int y = height - 1; y >= 0; --y) {
            QByteArray row;
            for (int x = 0; x < width; ++x)
                row += char(colourAt(x, y) >> shift);
            if (isPacked)
                row = char(0x80 | width) + row + '\0'; // one run of differing bytes, and its end
            starts += big(quint32(rowsAt + rows.size()));
            lengths += big(quint32(row.size()));
            rows += row;
        }
    }
    return bytes + (isPacked ? starts + lengths : QByteArray()) + rows;
}

// Rows of fewer than eight bytes are a case of their own, which ImageMagick's releases differ on.
constexpr int pictWidth = 2 * width;

/// A pixel map of eight bits with a table of its colours, each colour two pixels wide.
QByteArray pict()
{
    const QByteArray frame =
        big<quint16>(0) + big<quint16>(0) + big(quint16(height)) + big(quint16(pictWidth));
    QByteArray bytes = QByteArray(512, '\0') + big<quint16>(0) + frame;
    bytes += QByteArray("\0\x11\x02\xff\x0c\0\xff\xfe\0\0", 10) + big<quint32>(72 << 16) +
             big<quint32>(72 << 16) + frame + QByteArray(4, '\0');
    bytes += big<quint16>(0x90) + big(quint16(0x8000 | pictWidth)) + frame + big<quint16>(0) +
             big<quint16>(0) + big<quint32>(0) + big<quint32>(72 << 16) + big<quint32>(72 << 16) +
             big<quint16>(0) + big<quint16>(8) + big<quint16>(1) + big<quint16>(8) + QByteArray(12, '\0');
    bytes += QByteArray(6, '\0') + big(quint16(colours.size() - 1));
    for (size_t i = 0; i < colours.size(); ++i)
        bytes += big(quint16(i)) + big(quint16(qRed(colours[i]) * 257)) +
                 big(quint16(qGreen(colours[i]) * 257)) + big(quint16(qBlue(colours[i]) * 257));
    bytes += frame + frame + big<quint16>(0);
    for (int y = 0; y < height; ++y) {
        // One run of differing bytes, behind the count of what the packed row takes.
        bytes += char(1 + pictWidth);
        bytes += char(pictWidth - 1);
        for (int x = 0; x < pictWidth; ++x)
            bytes += char(y * width + x / 2);
    }
    return bytes + big<quint16>(0xff);
}

class SmallFormatsTest : public testing::Test
{
protected:
    std::optional<QImage> decode(const char *name, const QByteArray &bytes)
    {
        const auto source =
            ImageSource::open(PictureFiles::write(folder, QString::fromLatin1(name), bytes), &reason);
        return source ? source->fullImage(&reason) : std::nullopt;
    }
    void expectColours(const std::optional<QImage> &image)
    {
        ASSERT_TRUE(image) << qPrintable(reason);
        ASSERT_EQ(image->size(), QSize(width, height));
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                EXPECT_EQ(image->pixel(x, y), colourAt(x, y)) << x << ' ' << y;
        }
    }

    QTemporaryDir folder;
    QString reason;
};

} // namespace

TEST_F(SmallFormatsTest, Icon)
{
    expectColours(decode("a.ico", icon(1, little<quint16>(1) + little<quint16>(32))));
}

TEST_F(SmallFormatsTest, CursorWithItsHotSpot)
{
    expectColours(decode("a.cur", icon(2, little<quint16>(3) + little<quint16>(1))));
}

TEST_F(SmallFormatsTest, BitsOfXbmAreInkFromTheLeft)
{
    const auto image = decode("a.xbm", "#define a_width 10\n#define a_height 2\n"
                                       "static char a_bits[] = {\n 0x01, 0x02, 0x80, 0x01 };\n");
    ASSERT_TRUE(image) << qPrintable(reason);
    ASSERT_EQ(image->size(), QSize(10, 2));
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 10; ++x) {
            const bool isInk = y == 0 ? x == 0 || x == 9 : x == 7 || x == 8;
            EXPECT_EQ(image->pixel(x, y), isInk ? qRgb(0, 0, 0) : qRgb(255, 255, 255)) << x << ' ' << y;
        }
    }
}

TEST_F(SmallFormatsTest, SgiPlainAndPacked)
{
    expectColours(decode("plain.sgi", sgi(false)));
    expectColours(decode("packed.sgi", sgi(true)));
}

TEST_F(SmallFormatsTest, LightOfHdrWithinTheDisplaysRangeIsOnlyEncoded)
{
    // A shared exponent of 128 stands for parts of one.
    const QByteArray bytes("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 3\n"
                           "\xff\0\0\x80\x80\x80\x80\x80\0\0\0\0",
                           45 + 12);
    const auto image = decode("a.hdr", bytes);
    ASSERT_TRUE(image) << qPrintable(reason);
    ASSERT_EQ(image->size(), QSize(3, 1));
    EXPECT_NEAR(qRed(image->pixel(0, 0)), 255, 1);
    EXPECT_LE(qGreen(image->pixel(0, 0)), 8); // no sample is less than half a step
    EXPECT_NEAR(qRed(image->pixel(1, 0)), 188, 1);
    EXPECT_NEAR(qBlue(image->pixel(1, 0)), 188, 1);
    EXPECT_EQ(image->pixel(2, 0), qRgb(0, 0, 0));
}

TEST_F(SmallFormatsTest, PictWithAPixelMap)
{
    const std::optional<QImage> image = decode("a.pict", pict());
    ASSERT_TRUE(image) << qPrintable(reason);
    ASSERT_EQ(image->size(), QSize(pictWidth, height));
    expectColours(image->scaled(width, height, Qt::IgnoreAspectRatio, Qt::FastTransformation));
}
