#include "media/OrientedImage.h"

#include <QColorSpace>
#include <QPainter>
#include <QRandomGenerator>
#include <QStringList>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qorvane;

namespace {

// A colour for each of the letters A to P, far from those of the other letters.
QColor colourOf(char letter)
{
    const int index = letter - 'A';
    return {(index % 4) * 85, (index / 4) * 85, index * 16};
}

// The letters A to P, four to a row, each a cell of a quarter of the width and height.
QImage letteredPicture(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    QPainter painter(&picture);
    for (int i = 0; i < 16; ++i) {
        painter.fillRect((i % 4) * size.width() / 4, (i / 4) * size.height() / 4, size.width() / 4,
                         size.height() / 4, colourOf(char('A' + i)));
    }
    return picture;
}

// The cells of a result as letters, one string a row; "." where it is transparent, "?" for anything else.
QStringList cellsOf(const QImage &image, int columns, int rows)
{
    QStringList lines;
    for (int row = 0; row < rows; ++row) {
        QString line;
        for (int column = 0; column < columns; ++column) {
            const QColor colour = image.pixelColor((2 * column + 1) * image.width() / (2 * columns),
                                                   (2 * row + 1) * image.height() / (2 * rows));
            char found = colour.alpha() == 0 ? '.' : '?';
            for (char letter = 'A'; letter <= 'P' && colour.alpha() == 255; ++letter) {
                const QColor expected = colourOf(letter);
                if (std::abs(expected.red() - colour.red()) < 4 &&
                    std::abs(expected.green() - colour.green()) < 4 &&
                    std::abs(expected.blue() - colour.blue()) < 4)
                    found = letter;
            }
            line += QLatin1Char(found);
        }
        lines += line;
    }
    return lines;
}

QStringList lines(const char *text)
{
    return QString::fromLatin1(text).split(u' ');
}

QImage noise(QSize size, QImage::Format format)
{
    QRandomGenerator random(7);
    QImage picture(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            picture.setPixel(x, y, random.generate());
    }
    return picture.convertToFormat(format);
}

} // namespace

// A 4 by 4 grid of letters in a picture of 80 by 40 is squeezed into a rectangle of 40 by 80 with cells of 10
// by 20. With the origin at the bottom left, 5 and 6 take a point (u, v) of it to x = 40 - v, 7 and 8 to x =
// v; 6 and 7 to y = u and y = u - 40, 5 and 8 to y = 80 - u. What lies outside 40 by 80 then is lost.
TEST(OrientedImage, drawsALandscapePictureThroughTheSwappedRectangle)
{
    const QImage source = letteredPicture({80, 40});
    for (quint32 orientation = 5; orientation <= 8; ++orientation)
        EXPECT_EQ(orientedImage(source, orientation).size(), QSize(40, 80)) << orientation;
    EXPECT_EQ(cellsOf(orientedImage(source, 5), 2, 8), lines("IM JN KO LP .. .. .. .."));
    EXPECT_EQ(cellsOf(orientedImage(source, 6), 2, 8), lines(".. .. .. .. LP KO JN IM"));
    EXPECT_EQ(cellsOf(orientedImage(source, 8), 2, 8), lines("MI NJ OK PL .. .. .. .."));
}

// 40 by 80 is squeezed into 80 by 40 with cells of 20 by 10; the same maps with 80 for 40 in x and 40 for 80
// in y.
TEST(OrientedImage, drawsAPortraitPictureThroughTheSwappedRectangle)
{
    const QImage source = letteredPicture({40, 80});
    for (quint32 orientation = 5; orientation <= 8; ++orientation)
        EXPECT_EQ(orientedImage(source, orientation).size(), QSize(80, 40)) << orientation;
    EXPECT_EQ(cellsOf(orientedImage(source, 5), 8, 2), lines("....AEIM ....BFJN"));
    EXPECT_EQ(cellsOf(orientedImage(source, 6), 8, 2), lines("....BFJN ....AEIM"));
    EXPECT_EQ(cellsOf(orientedImage(source, 8), 8, 2), lines("MIEA.... NJFB...."));
}

TEST(OrientedImage, drawsOrientation7WhollyOutside)
{
    for (const QSize size : {QSize(80, 40), QSize(40, 80), QSize(40, 40)}) {
        const QImage result = orientedImage(letteredPicture(size), 7);
        EXPECT_EQ(result.size(), size.transposed());
        QImage empty(result.size(), QImage::Format_ARGB32_Premultiplied);
        empty.fill(Qt::transparent);
        empty.setColorSpace(result.colorSpace());
        EXPECT_TRUE(result.convertToFormat(empty.format()) == empty);
    }
}

TEST(OrientedImage, leavesNothingHalfCoveredWhereThePictureEnds)
{
    const QImage result = orientedImage(letteredPicture({80, 40}), 6);
    for (int x = 0; x < 40; ++x) {
        EXPECT_EQ(qAlpha(result.pixel(x, 39)), 0);
        EXPECT_EQ(qAlpha(result.pixel(x, 40)), 255);
    }
}

TEST(OrientedImage, drawsALandscapePictureUnsqueezedForOneToFour)
{
    const QImage source = letteredPicture({80, 40});
    EXPECT_EQ(cellsOf(orientedImage(source, 1), 4, 4), lines("ABCD EFGH IJKL MNOP"));
    EXPECT_EQ(cellsOf(orientedImage(source, 2), 4, 4), lines("DCBA HGFE LKJI PONM"));
    EXPECT_EQ(cellsOf(orientedImage(source, 3), 4, 4), lines("PONM LKJI HGFE DCBA"));
    EXPECT_EQ(cellsOf(orientedImage(source, 4), 4, 4), lines("MNOP IJKL EFGH ABCD"));
}

TEST(OrientedImage, movesPixelsUnchangedForOneToFour)
{
    // Odd sides, and more than one tile of the copy in each direction.
    for (const QSize size : {QSize(5, 3), QSize(1, 1), QSize(67, 33), QSize(3, 130)}) {
        for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
            const QImage source = noise(size, format);
            for (quint32 orientation = 1; orientation <= 4; ++orientation) {
                const QImage result = orientedImage(source, orientation).convertToFormat(format);
                ASSERT_EQ(result.size(), size);
                const bool isMirroredX = orientation == 2 || orientation == 3;
                const bool isMirroredY = orientation == 3 || orientation == 4;
                for (int y = 0; y < size.height(); ++y) {
                    for (int x = 0; x < size.width(); ++x) {
                        const int fromX = isMirroredX ? size.width() - 1 - x : x;
                        const int fromY = isMirroredY ? size.height() - 1 - y : y;
                        ASSERT_EQ(reinterpret_cast<const QRgb *>(result.constScanLine(y))[x],
                                  reinterpret_cast<const QRgb *>(source.constScanLine(fromY))[fromX])
                            << orientation << " at " << x << ", " << y;
                    }
                }
            }
        }
    }
}

// A square is not squeezed, so that the quarter turns of 5, 6 and 8 move its pixels unchanged.
TEST(OrientedImage, movesTheSquaresPixelsUnchangedForQuarterTurns)
{
    const int n = 37;
    const QImage source = noise({n, n}, QImage::Format_RGB32);
    const QImage five = orientedImage(source, 5);
    const QImage six = orientedImage(source, 6);
    const QImage eight = orientedImage(source, 8);
    for (int y = 0; y < n; ++y) {
        for (int x = 0; x < n; ++x) {
            ASSERT_EQ(five.pixel(x, y), source.pixel(y, x));
            ASSERT_EQ(six.pixel(x, y), source.pixel(n - 1 - y, x));
            ASSERT_EQ(eight.pixel(x, y), source.pixel(y, n - 1 - x));
        }
    }
}

TEST(OrientedImage, keepsTheColourSpaceOrTakesStandardColours)
{
    QImage source = letteredPicture({8, 4});
    EXPECT_EQ(orientedImage(source, 1).colorSpace(), QColorSpace(QColorSpace::SRgb));
    source.setColorSpace(QColorSpace::DisplayP3);
    EXPECT_EQ(orientedImage(source, 6).colorSpace(), QColorSpace(QColorSpace::DisplayP3));
}

TEST(OrientedImage, givesANullSourceBackWhateverTheOrientation)
{
    EXPECT_TRUE(orientedImage(QImage(), 6).isNull());
    EXPECT_TRUE(orientedImage(QImage(), 99).isNull()) << "there is no context yet to stop over";
}

TEST(OrientedImageDeathTest, endsTheProgramForAnythingButOneToEight)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const QImage source = letteredPicture({8, 4});
    EXPECT_DEATH(orientedImage(source, 0), "0 is no orientation");
    EXPECT_DEATH(orientedImage(source, 9), "9 is no orientation");
}
