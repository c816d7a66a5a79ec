#include "views/style/ShadowProvider.h"

#include <gtest/gtest.h>

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
    const QImage image = shadow("6/24/07000000");
    const int middle = image.width() / 2;
    ASSERT_EQ(image.width() % 2, 1); // one line that can be stretched
    EXPECT_EQ(image.size(), QSize(image.width(), image.width()));
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
    // Inside the outermost layer by what all the layers reach: (layers - 1)^2 / layers, in whole pixels.
    for (const char *id : {"0/24/07000000", "6/24/07000000", "12/24/07000000"}) {
        const QImage image = shadow(id);
        const int middle = image.width() / 2;
        EXPECT_NEAR(alpha(image, 23, middle), 125, 4) << id;
        EXPECT_LT(alpha(image, 21, middle), 122) << id;
    }
}

TEST(ShadowProvider, takesTheColourAsked)
{
    const QImage image = shadow("6/12/40ff0000");
    const QColor colour = image.pixelColor(image.width() / 2, image.height() / 2);
    EXPECT_GT(colour.red(), 240);
    EXPECT_EQ(colour.blue(), 0);
}

TEST(ShadowProvider, givesNothingForWhatIsNoShadow)
{
    for (const char *id : {"", "6", "6/24", "6/24/none", "6/0/07000000", "-1/24/07000000", "1e9/24/07000000",
                           "6/100000000/07000000", "nan/24/07000000", "6/24/07000000/more"})
        EXPECT_TRUE(shadow(id).isNull()) << id;
}
