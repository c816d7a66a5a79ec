#include "views/style/ShadowProvider.h"

#include <gtest/gtest.h>

#include <utility>

using namespace Qorvane;

namespace {

QImage shadow(const char *id)
{
    QSize size;
    const QImage image = ShadowProvider().requestImage(QString::fromLatin1(id), &size, {});
    EXPECT_TRUE(image.isNull() || size == image.size());
    return image;
}

int alpha(const QImage &image, int x, int y)
{
    return qAlpha(image.pixel(x, y));
}

} // namespace

TEST(ShadowProvider, fadesOutInEveryDirection)
{
    const QImage image = shadow("6/24/23/101/101/1/07000000");
    const int middle = image.width() / 2;
    // 24 layers of 7/255 over each other.
    EXPECT_NEAR(alpha(image, middle, middle), 125, 3);
    EXPECT_LT(alpha(image, 0, middle), 8);
    EXPECT_EQ(alpha(image, 0, 0), 0);
    for (int x = 1; x <= middle; ++x) {
        EXPECT_GE(alpha(image, x, middle), alpha(image, x - 1, middle)) << x;
        EXPECT_NEAR(alpha(image, x, middle), alpha(image, image.width() - 1 - x, middle), 2) << x;
        EXPECT_NEAR(alpha(image, x, middle), alpha(image, middle, x), 2) << x;
    }
}

TEST(ShadowProvider, isAsDarkAtTheEdgeOfWhatCastsItWhateverItsRadius)
{
    for (const char *id :
         {"0/24/23/101/101/1/07000000", "6/24/23/101/101/1/07000000", "12/24/23/101/101/1/07000000"}) {
        const QImage image = shadow(id);
        EXPECT_NEAR(alpha(image, 24, 50), 125, 4) << id;
        EXPECT_LT(alpha(image, 22, 50), 122) << id;
    }
}

TEST(ShadowProvider, runsAlongTheSidesOfALargeOne)
{
    const QImage image = shadow("6/24/23/300/200/1/07000000");
    for (const int depth : {4, 12, 20, 22}) {
        for (int x = 40; x < 260; ++x) {
            EXPECT_EQ(alpha(image, x, depth), alpha(image, 150, depth));
            EXPECT_EQ(alpha(image, x, 199 - depth), alpha(image, 150, depth));
        }
        for (int y = 40; y < 160; ++y) {
            EXPECT_EQ(alpha(image, depth, y), alpha(image, 150, depth));
            EXPECT_EQ(alpha(image, 299 - depth, y), alpha(image, 150, depth));
        }
    }
}

TEST(ShadowProvider, isTheSameDrawnWholeOrFromAPatch)
{
    // 59 is the smallest that is drawn from a patch.
    const QImage whole = shadow("6/24/23/58/58/1/07000000");
    const QImage patched = shadow("6/24/23/90/90/1/07000000");
    for (int y = 0; y < 29; ++y) {
        for (int x = 0; x < 29; ++x)
            EXPECT_NEAR(alpha(whole, x, y), alpha(patched, x, y), 1) << x << ',' << y;
    }
}

TEST(ShadowProvider, isFinerOnADenserScreen)
{
    const QImage once = shadow("6/24/23/101/81/1/07000000");
    for (const auto &[scale, id] :
         {std::pair(1.5, "6/24/23/101/81/1.5/07000000"), std::pair(2.0, "6/24/23/101/81/2/07000000")}) {
        const QImage dense = shadow(id);
        EXPECT_EQ(dense.size(), (QSizeF(101, 81) * scale).toSize());
        for (const int away : {6, 14, 21})
            EXPECT_NEAR(alpha(dense, int(away * scale), dense.height() / 2), alpha(once, away, 40), 8)
                << scale << ' ' << away;
    }
}

TEST(ShadowProvider, takesTheColourAsked)
{
    const QImage image = shadow("6/12/11/60/60/1/40ff0000");
    const QColor colour = image.pixelColor(30, 30);
    EXPECT_GT(colour.red(), 240);
    EXPECT_EQ(colour.blue(), 0);
}

TEST(ShadowProvider, givesNothingForWhatIsNoShadow)
{
    for (const char *id :
         {"", "6", "6/24/23/60/60/1", "6/24/23/60/60/1/none", "6/0/23/60/60/1/07000000",
          "-1/24/23/60/60/1/07000000", "1e9/24/23/60/60/1/07000000", "6/100000000/23/60/60/1/07000000",
          "nan/24/23/60/60/1/07000000", "6/24/-1/60/60/1/07000000", "6/24/nan/60/60/1/07000000",
          "6/24/23/0/60/1/07000000", "6/24/23/60/-60/1/07000000", "6/24/23/60/2000000000/1/07000000",
          "6/24/23/60/60/0/07000000", "6/24/23/60/60/nan/07000000", "6/24/23/60/60/1e9/07000000",
          "6/24/23/60/60/1e-9/07000000", "6/24/23/60/60/1/07000000/more"})
        EXPECT_TRUE(shadow(id).isNull()) << id;
}
