#include "media/ImageDestination.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>

#include <gtest/gtest.h>

#include <cstdlib>

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
