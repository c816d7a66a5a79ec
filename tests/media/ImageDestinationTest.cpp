#include "media/ImageDestination.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdlib>
#include <fstream>

using namespace Qorvane;

namespace {

QImage plain(QColor colour, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(40, 30, format);
    image.fill(colour);
    return image;
}

QImage decoded(const QByteArray &jpeg)
{
    return QImage::fromData(jpeg, "JPEG");
}

/// The markers before the first scan, in order.
QList<int> markersOf(const QByteArray &jpeg)
{
    QList<int> markers;
    qsizetype at = 2;
    while (at + 4 <= jpeg.size() && uchar(jpeg[at]) == 0xff) {
        markers += uchar(jpeg[at + 1]);
        if (markers.last() == 0xda)
            break;
        at += 2 + (uchar(jpeg[at + 2]) << 8 | uchar(jpeg[at + 3]));
    }
    return markers;
}

/// Nothing that compresses, in the encoder's own format.
QImage noise(int side)
{
    QImage image(side, side, QImage::Format_RGBX8888);
    quint32 state = 1;
    for (int y = 0; y < side; ++y) {
        auto *row = reinterpret_cast<quint32 *>(image.scanLine(y));
        for (int x = 0; x < side; ++x)
            row[x] = (state = state * 1664525 + 1013904223) >> 8 | 0xff000000;
    }
    return image;
}

/// Lets the process take no more than `bytes` beyond what it has.
[[maybe_unused]] void limitMemory(size_t bytes) // used where no sanitizer needs all addresses
{
    size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t limit = pages * 4096 + bytes;
    const rlimit both = {limit, limit};
    setrlimit(RLIMIT_AS, &both);
}

bool isNear(QColor one, QColor other)
{
    return std::abs(one.red() - other.red()) <= 3 && std::abs(one.green() - other.green()) <= 3 &&
           std::abs(one.blue() - other.blue()) <= 3;
}

} // namespace

TEST(ImageDestination, writesABaselineJpegWithoutMetadata)
{
    const std::optional<QByteArray> jpeg = jpegRepresentation(plain(Qt::red), 0.9);
    ASSERT_TRUE(jpeg);
    EXPECT_TRUE(jpeg->startsWith("\xff\xd8"));
    EXPECT_TRUE(jpeg->endsWith("\xff\xd9"));
    const QList<int> markers = markersOf(*jpeg);
    EXPECT_TRUE(markers.contains(0xc0)) << "baseline";
    EXPECT_FALSE(markers.contains(0xc2)) << "progressive";
    EXPECT_EQ(markers.count(0xe0), 1) << "the JFIF header";
    for (int application = 0xe1; application <= 0xef; ++application)
        EXPECT_FALSE(markers.contains(application)) << application;
    EXPECT_FALSE(markers.contains(0xfe)) << "comment";
}

TEST(ImageDestination, quantisesAsTheFactorSays)
{
    // The standard luminance table starts with 16; quality 90 makes 3 of it, quality 50 leaves it.
    const auto firstQuantiser = [](double factor) {
        const QByteArray jpeg = *jpegRepresentation(plain(Qt::red), factor);
        return int(jpeg.at(jpeg.indexOf(QByteArray("\xff\xdb", 2)) + 5));
    };
    EXPECT_EQ(firstQuantiser(0.9), 3);
    EXPECT_EQ(firstQuantiser(0.5), 16);
    EXPECT_EQ(firstQuantiser(1.0), 1);
}

TEST(ImageDestination, keepsSizeAndColours)
{
    for (const QColor &colour :
         {QColor(200, 30, 90), QColor(12, 130, 240), QColor(255, 255, 255), QColor(0, 0, 0)}) {
        const QImage image = decoded(*jpegRepresentation(plain(colour), 0.9));
        EXPECT_EQ(image.size(), QSize(40, 30));
        EXPECT_TRUE(isNear(image.pixelColor(20, 15), colour)) << colour.name().toStdString();
    }
}

TEST(ImageDestination, laysTransparencyOverWhite)
{
    for (const QImage::Format format : {QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied}) {
        const QImage clear = decoded(*jpegRepresentation(plain(Qt::transparent, format), 0.9));
        EXPECT_TRUE(isNear(clear.pixelColor(20, 15), Qt::white));
        const QImage half = decoded(*jpegRepresentation(plain(QColor(0, 0, 0, 128), format), 0.9));
        EXPECT_TRUE(isNear(half.pixelColor(20, 15), QColor(127, 127, 127)));
    }
}

TEST(ImageDestination, convertsOtherColourSpacesSinceNoneIsWritten)
{
    QImage image = plain(QColor(128, 128, 128));
    image.setColorSpace(QColorSpace::SRgbLinear);
    // Half of linear light is 188 in sRGB's curve.
    EXPECT_TRUE(isNear(decoded(*jpegRepresentation(image, 0.9)).pixelColor(20, 15), QColor(188, 188, 188)));
}

TEST(ImageDestination, saysWhyThereIsNoJpeg)
{
    QString error;
    EXPECT_FALSE(jpegRepresentation(QImage(), 0.9, &error));
    EXPECT_EQ(error, QStringLiteral("no pixels to encode"));
    EXPECT_FALSE(jpegRepresentation(QImage(65501, 1, QImage::Format_RGB32), 0.9, &error));
    EXPECT_EQ(error, QStringLiteral("Maximum supported image dimension is 65500 pixels"));
}

TEST(ImageDestination, aLongJpegIsWhole)
{
    const QImage image = noise(1000);
    const std::optional<QByteArray> jpeg = jpegRepresentation(image, 0.9);
    ASSERT_TRUE(jpeg);
    EXPECT_GT(jpeg->size(), 512 * 1024);
    EXPECT_TRUE(jpeg->endsWith("\xff\xd9"));
    EXPECT_EQ(decoded(*jpeg).size(), image.size());
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which take all addresses for themselves
TEST(ImageDestinationDeathTest, isToldWhenTheMemoryForTheJpegRunsOut)
{
    const auto encodeInLittleMemory = [] {
        const QImage image = noise(3000);
        limitMemory(6 << 20);
        QString error;
        const bool isTold = !jpegRepresentation(image, 0.9, &error);
        std::_Exit(isTold && error.startsWith(QLatin1String("Insufficient memory")) ? 0 : 1);
    };
    EXPECT_EXIT(encodeInLittleMemory(), testing::ExitedWithCode(0), "");
}
#endif
