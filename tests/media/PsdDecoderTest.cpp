#include "media/decoders/PsdDecoder.h"

#include "media/CountedBytes.h"
#include "media/PictureFiles.h"
#include "media/PsdFile.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qorvane;

namespace {

const QImage picture = PictureFiles::testPicture(41, 30);

PsdFile rgbFile()
{
    PsdFile file;
    file.size = picture.size();
    file.channels = PsdFile::rgbPlanes(picture);
    return file;
}

std::optional<QImage> fullImage(const PsdFile &file)
{
    QString reason;
    const auto image = decodePsd(MemoryBytes(file.bytes()), DecodeRequest(), reason);
    EXPECT_TRUE(image || !reason.isEmpty());
    return image;
}

DecodeRequest thumbnailRequest(int side)
{
    DecodeRequest request;
    request.maxPixelSize = side;
    request.isPreviewAllowed = true;
    return request;
}

/// The largest difference of any channel of any pixel; 1000 when there is no picture or another size.
int largestDifference(const std::optional<QImage> &image, const QImage &expected)
{
    if (!image || image->size() != expected.size())
        return 1000;
    int largest = 0;
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            const QColor a = image->pixelColor(x, y);
            const QColor b = expected.pixelColor(x, y);
            largest = std::max({largest, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                                std::abs(a.blue() - b.blue()), std::abs(a.alpha() - b.alpha())});
        }
    }
    return largest;
}

/// A thumbnail resource that holds a JPEG.
QByteArray thumbnailResource(const QImage &thumbnail)
{
    QByteArray content;
    PsdFile::append<quint32>(content, 1);
    content.append(QByteArray(24, '\0'));
    return content + PictureFiles::jpeg(thumbnail);
}

/// A section of layers that begins with their number and is filled up to `size`.
QByteArray layers(int count, bool isLarge, qsizetype size = 32)
{
    QByteArray content;
    PsdFile::append<qint16>(content, count);
    content.append(QByteArray(size - 2, '\0'));
    QByteArray section;
    if (isLarge)
        PsdFile::append<quint64>(section, content.size());
    else
        PsdFile::append<quint32>(section, content.size());
    return section + content + QByteArray(4, '\0'); // no masks
}

constexpr int thumbnailNumber = 1036;
constexpr int versionNumber = 1057;
constexpr int alphaNamesNumber = 1006;

} // namespace

TEST(PsdDecoderTest, PlainAndPackedPicturesOfBothVersionsComeOutAsTheyAre)
{
    for (const bool isLarge : {false, true}) {
        for (const bool isPacked : {false, true}) {
            PsdFile file = rgbFile();
            file.isLarge = isLarge;
            file.isPacked = isPacked;
            EXPECT_EQ(largestDifference(fullImage(file), picture), 0) << isLarge << isPacked;
        }
    }
}

TEST(PsdDecoderTest, SixteenBitsBecomeEight)
{
    PsdFile file = rgbFile();
    file.bitsPerSample = 16;
    for (QByteArray &channel : file.channels) {
        QByteArray wide;
        for (const char sample : std::as_const(channel))
            PsdFile::append<quint16>(wide, uchar(sample) * 257);
        channel = wide;
    }
    EXPECT_EQ(largestDifference(fullImage(file), picture), 0);
}

TEST(PsdDecoderTest, GreysPalettesAndBitsAreRead)
{
    const QImage gray =
        picture.convertToFormat(QImage::Format_Grayscale8).convertToFormat(QImage::Format_RGB32);
    PsdFile file = rgbFile();
    file.mode = 1;
    file.channels = {PsdFile::plane(gray, qRed)};
    EXPECT_EQ(largestDifference(fullImage(file), gray), 0);

    file.mode = 2;
    for (int channel = 0; channel < 3; ++channel) {
        for (int i = 0; i < 256; ++i)
            file.palette.append(char(channel == 1 ? 255 - i : i));
    }
    const auto indexed = fullImage(file);
    ASSERT_TRUE(indexed);
    const int value = qRed(gray.pixel(30, 20));
    EXPECT_EQ(indexed->pixel(30, 20), qRgb(value, 255 - value, value));

    file.mode = 0;
    file.bitsPerSample = 1;
    file.palette.clear();
    QByteArray rows;
    for (int y = 0; y < file.size.height(); ++y)
        rows.append("\x80\0\0\0\0\x80", 6); // the leftmost and the last of 41 are black
    file.channels = {rows};
    const auto bits = fullImage(file);
    ASSERT_TRUE(bits);
    EXPECT_EQ(bits->pixel(0, 7), qRgb(0, 0, 0));
    EXPECT_EQ(bits->pixel(1, 7), qRgb(255, 255, 255));
    EXPECT_EQ(bits->pixel(40, 7), qRgb(0, 0, 0));
}

TEST(PsdDecoderTest, InksTakeTheirColourAway)
{
    PsdFile file;
    file.size = QSize(2, 1);
    file.mode = 4;
    // No ink at all, and all of the cyan: the format has its inks inverted.
    file.channels = {QByteArray("\xff\x00", 2), "\xff\xff", "\xff\xff", "\xff\xff"};
    const auto image = fullImage(file);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(image->pixel(1, 0), qRgb(0, 255, 255));
}

TEST(PsdDecoderTest, TheWhiteBehindTransparentPixelsIsTakenAway)
{
    PsdFile file;
    file.size = QSize(3, 1);
    // Opaque red, half of a red over white, nothing over white.
    file.channels = {"\xff\xff\xff", QByteArray("\x00\x7f\xff", 3), QByteArray("\x00\x7f\xff", 3),
                     QByteArray("\xff\x80\x00", 3)};
    file.layers = layers(-1, false);
    const auto image = fullImage(file);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(image->pixelColor(0, 0), QColor(255, 0, 0));
    EXPECT_EQ(image->pixelColor(1, 0), QColor(255, 0, 0, 128));
    EXPECT_EQ(image->pixelColor(2, 0).alpha(), 0);
}

TEST(PsdDecoderTest, AStoredSelectionIsNoTransparency)
{
    PsdFile file = rgbFile();
    file.channels.append(QByteArray(41 * 30, '\x40'));
    file.layers = layers(2, false);
    EXPECT_EQ(largestDifference(fullImage(file), picture), 0);
    file.layers.clear();
    file.resources = {{alphaNamesNumber, "\7Subject"}};
    EXPECT_EQ(largestDifference(fullImage(file), picture), 0);
}

TEST(PsdDecoderTest, LayersAndFurtherChannelsAreNotRead)
{
    for (const bool isLarge : {false, true}) {
        PsdFile file = rgbFile();
        file.isLarge = isLarge;
        file.layers = layers(3, isLarge, 2'000'000);
        const qsizetype needed = file.channels.join().size();
        file.channels.append(QByteArray(500'000, 'x'));
        const CountedBytes bytes(file.bytes());
        QString reason;
        const auto image = decodePsd(bytes, DecodeRequest(), reason);
        EXPECT_EQ(largestDifference(image, picture), 0);
        EXPECT_LT(bytes.readCount(), needed + 1000);
    }
}

TEST(PsdDecoderTest, APictureOfManyPixelsIsReducedWhileItIsRead)
{
    PsdFile file;
    file.size = QSize(20'000, 10'000);
    file.mode = 1;
    file.isPacked = true;
    file.channels = {QByteArray(200'000'000, '\x50')};
    file.channels[0].replace(100'000'000, 100'000'000, QByteArray(100'000'000, '\xa0'));
    const QByteArray bytes = file.bytes();
    file.channels.clear();
    QString reason;
    const auto image = decodePsd(MemoryBytes(bytes), thumbnailRequest(800), reason);
    ASSERT_TRUE(image) << qPrintable(reason);
    EXPECT_EQ(image->size(), QSize(800, 400));
    EXPECT_EQ(image->pixel(400, 50), qRgb(0x50, 0x50, 0x50));
    EXPECT_EQ(image->pixel(400, 350), qRgb(0xa0, 0xa0, 0xa0));
}

TEST(PsdDecoderTest, TheFilesOwnThumbnailGoesFirstButNotForThePictureItself)
{
    PsdFile file = rgbFile();
    const QImage thumbnail = picture.scaled(20, 15).rgbSwapped();
    file.resources = {{thumbnailNumber, thumbnailResource(thumbnail)}};
    QString reason;
    const auto preview = decodePsd(MemoryBytes(file.bytes()), thumbnailRequest(800), reason);
    ASSERT_TRUE(preview) << qPrintable(reason);
    EXPECT_EQ(preview->size(), thumbnail.size());
    EXPECT_EQ(largestDifference(fullImage(file), picture), 0);
}

TEST(PsdDecoderTest, AThumbnailOfAnotherShapeIsPassedOver)
{
    PsdFile file = rgbFile();
    file.resources = {{thumbnailNumber, thumbnailResource(PictureFiles::testPicture(40, 60))}};
    QString reason;
    const auto image = decodePsd(MemoryBytes(file.bytes()), thumbnailRequest(800), reason);
    EXPECT_EQ(largestDifference(image, picture), 0);
}

TEST(PsdDecoderTest, TheThumbnailIsWhatIsLeftOfADamagedPicture)
{
    PsdFile file = rgbFile();
    file.channels.removeLast();
    QString reason;
    QByteArray bytes = file.bytes();
    EXPECT_FALSE(decodePsd(MemoryBytes(bytes), DecodeRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("its data is damaged"));
    file = rgbFile();
    file.resources = {{thumbnailNumber, thumbnailResource(picture.scaled(20, 15))}};
    bytes = file.bytes();
    bytes.chop(100);
    const auto image = decodePsd(MemoryBytes(bytes), DecodeRequest(), reason);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), QSize(20, 15));
}

TEST(PsdDecoderTest, WithoutAMergedPictureAndLayersThereIsNothing)
{
    PsdFile file = rgbFile();
    file.resources = {{versionNumber, QByteArray("\0\0\0\1\0", 5)}};
    file.channels = {"", "", ""};
    QString reason;
    EXPECT_FALSE(decodePsd(MemoryBytes(file.bytes()), DecodeRequest(), reason));
    EXPECT_FALSE(reason.isEmpty());
}

TEST(PsdDecoderTest, ARowThatUnpacksBeyondItsEndIsRefused)
{
    PsdFile file;
    file.size = QSize(8, 2);
    file.mode = 1;
    file.compression = 1;
    QByteArray data;
    PsdFile::append<quint16>(data, 2);
    PsdFile::append<quint16>(data, 2);
    data.append("\x81\x55\x81\x55", 4); // 128 of them each
    file.channels = {data};
    QString reason;
    EXPECT_FALSE(decodePsd(MemoryBytes(file.bytes()), DecodeRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("its data is damaged"));
}

TEST(PsdDecoderTest, ItEndsWithTheDeadline)
{
    DecodeRequest late;
    late.deadline = QDeadlineTimer(0);
    QString reason;
    EXPECT_FALSE(decodePsd(MemoryBytes(rgbFile().bytes()), late, reason));
    EXPECT_EQ(reason, QStringLiteral("decoding took too long"));
}
