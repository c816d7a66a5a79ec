#include "headless/ContactSheet.h"

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

QImage plain(QColor colour, QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

ContactSheet sheetOf(int count, const QImage &picture)
{
    ContactSheet sheet(QStringLiteral("Heading"), QStringLiteral("below"));
    for (int index = 0; index < count; ++index)
        sheet.add({picture, QStringLiteral("picture %1.jpg").arg(index), QString()});
    return sheet;
}

/// The smallest box around all pixels of exactly `colour`.
QRect boxOf(const QImage &image, QColor colour)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == colour)
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

} // namespace

TEST(ContactSheetTest, IsNearlySquareWhileSmallAndNoWiderThanAScreen)
{
    const QImage picture = plain(Qt::red, {80, 60});
    EXPECT_EQ(sheetOf(1, picture).columns(), 1);
    EXPECT_EQ(sheetOf(4, picture).columns(), 2);
    EXPECT_EQ(sheetOf(10, picture).columns(), 4);
    EXPECT_EQ(sheetOf(500, picture).columns(), 6);
    EXPECT_LE(sheetOf(500, picture).draw().width(), 1920);
}

TEST(ContactSheetTest, GrowsByRows)
{
    const QImage picture = plain(Qt::red, {80, 60});
    const int two = sheetOf(12, picture).draw().height();
    const int three = sheetOf(13, picture).draw().height();
    const int four = sheetOf(25, picture).draw().height();
    EXPECT_GT(three, two);
    EXPECT_GT(four, three);
}

TEST(ContactSheetTest, FitsLargePicturesAndKeepsTheirShape)
{
    const QRect box = boxOf(sheetOf(1, plain(Qt::red, {1600, 400})).draw(), Qt::red);
    EXPECT_EQ(box.width(), 240);
    EXPECT_EQ(box.height(), 60);
}

TEST(ContactSheetTest, NeverEnlarges)
{
    const QRect box = boxOf(sheetOf(1, plain(Qt::red, {40, 30})).draw(), Qt::red);
    EXPECT_EQ(box.size(), QSize(40, 30));
}

TEST(ContactSheetTest, DrawsEveryPictureAtAPlaceOfItsOwn)
{
    ContactSheet sheet(QStringLiteral("Heading"), QString());
    sheet.add({plain(Qt::red, {240, 180}), QStringLiteral("a"), QString()});
    sheet.add({plain(Qt::green, {240, 180}), QStringLiteral("b"), QString()});
    sheet.add({plain(Qt::blue, {240, 180}), QStringLiteral("c"), QString()});
    const QImage drawn = sheet.draw();
    const QRect red = boxOf(drawn, Qt::red);
    const QRect green = boxOf(drawn, Qt::green);
    const QRect blue = boxOf(drawn, Qt::blue);
    EXPECT_EQ(red.top(), green.top());
    EXPECT_LT(red.right(), green.left());
    EXPECT_GT(blue.top(), red.bottom());
    EXPECT_EQ(blue.left(), red.left());
}

TEST(ContactSheetTest, StandsForAMissingPictureAndForNone)
{
    EXPECT_FALSE(sheetOf(0, QImage()).draw().isNull());
    const QImage with = sheetOf(1, QImage()).draw();
    ContactSheet untitled(QStringLiteral("Heading"), QStringLiteral("below"));
    untitled.add({QImage(), QString(), QString()});
    EXPECT_NE(with, untitled.draw()) << "the title is drawn";
}
