// What becomes of each of the awkward files of tests/data.

#include "media/ImageSource.h"
#include "media/OffMainThread.h"
#include "media/SupportedExtensions.h"
#include "media/VideoFrames.h"
#include "platform/FileUrl.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

using namespace Qorvane;

namespace {

/// What is to be seen in a picture.
enum class Sight {
    quarters, ///< red, green, blue and white in their quarters
    grays,    ///< the same in grey
    ramp,     ///< from black at the left to white at the right
    any,      ///< looked at by size alone, since more is told by a test of its own
};

struct Expectation
{
    const char *name;
    std::optional<QSize> size; ///< of the thumbnail; nothing where the file is refused
    Sight sight = Sight::quarters;
    int orientation = 1;
    const char *reason = ""; ///< a part of the reason for a refusal
    /// Releases of the library that reads it differ on whether it can be shown: a refusal with the reason is
    /// as good.
    bool isLeftToTheLibrary = false;
};

constexpr auto refused = std::nullopt;
constexpr QSize whole(48, 32);

const std::vector<Expectation> expectations = {
    // Wrong names
    {"jpeg-named.png", whole},
    {"png-named.jpg", whole},
    {"png-named.tga", whole},
    {"avif-named.heic", whole},
    {"tiff-named.nef", whole},
    {"text-named.jpg", refused, Sight::any, 1, "no known image format"},
    {"text-named.mp4", refused, Sight::any, 1, "Invalid data"},
    {"UPPER CASE %d #1 图.JPG", whole},
    // Damage
    {"empty.png", refused, Sight::any, 1, "the file is empty"},
    {"half.jpg", QSize(320, 200), Sight::any},
    {"header-only.jpg", refused, Sight::any, 1, "JPEG: "},
    {"trailing.jpg", whole},
    {"half.png", QSize(120, 80), Sight::any},
    {"wrong-checksum.png", whole, Sight::quarters, 1, "PNG: ", true},
    {"half.gif", whole, Sight::any},
    {"half.tif", refused, Sight::any, 1, "TIFF: "},
    {"half.psd", refused, Sight::any, 1, "PSD: its data is damaged"},
    // Orientations
    {"orientation-0.jpg", whole},
    {"orientation-1.jpg", whole},
    {"orientation-2.jpg", whole, Sight::quarters, 2},
    {"orientation-3.jpg", whole, Sight::quarters, 3},
    {"orientation-4.jpg", whole, Sight::quarters, 4},
    {"orientation-5.jpg", whole, Sight::quarters, 5},
    {"orientation-6.jpg", whole, Sight::quarters, 6},
    {"orientation-7.jpg", whole, Sight::quarters, 7},
    {"orientation-8.jpg", whole, Sight::quarters, 8},
    {"orientation-9.jpg", whole},
    {"orientation-6.png", whole, Sight::quarters, 6},
    {"orientation-6.tif", whole, Sight::quarters, 6},
    {"orientation-6.webp", whole, Sight::quarters, 6},
    // Colours
    {"profile-p3.jpg", whole},
    {"profile-cut.jpg", whole},
    {"profile-noise.jpg", whole},
    {"profile-gray-in-rgb.jpg", whole},
    {"profile-rgb-in-gray.jpg", whole, Sight::grays},
    {"profile-second-piece-missing.jpg", whole},
    {"profile-noise.png", whole, Sight::any},
    {"cmyk.jpg", whole},
    {"gray.jpg", whole, Sight::grays},
    {"gray-alpha.png", whole, Sight::any},
    {"16-bit.png", whole},
    {"16-bit.tif", whole, Sight::ramp},
    {"signed-8-bit.tif", whole, Sight::ramp},
    {"float.tif", whole, Sight::any},
    {"1-bit.png", QSize(8, 2), Sight::any},
    // Layouts
    {"interlaced.png", whole},
    {"interlaced.gif", whole},
    {"animated.gif", whole},
    {"animated.webp", whole},
    {"progressive.jpg", whole},
    {"other-preview.jpg", QSize(24, 16), Sight::any},
    {"top-down.bmp", whole},
    {"core-header.bmp", whole},
    {"comments.ppm", QSize(3, 1), Sight::any},
    {"1x10000.png", QSize(1, 800), Sight::any},
    {"10000x1.jpg", QSize(800, 1), Sight::any},
    {"1x1.gif", QSize(1, 1), Sight::any},
    // Claims of sizes that nobody has memory for
    {"bomb.png", refused, Sight::any, 1, "60000 x 60000 pixels are too many"},
    {"bomb.jpg", refused, Sight::any, 1, "60000 x 60000 pixels are too many"},
    {"bomb.gif", refused, Sight::any, 1, "GIF: "},
    {"screen-of-65535.gif", whole, Sight::any},
    {"bomb.bmp", refused, Sight::any, 1, "BMP: "},
    {"bomb.tif", refused, Sight::any, 1, "60000 x 60000 pixels are too many"},
    {"bomb-64-bit.tif", refused, Sight::any, 1, "TIFF: "},
    {"bomb.psd", refused, Sight::any, 1, "60000 x 60000 pixels are too many"},
    {"bomb.tga", refused, Sight::any, 1, "TGA: "},
    {"bomb.ppm", refused, Sight::any, 1, "60000 x 60000 pixels are too many"},
    {"bomb.hdr", refused, Sight::any, 1, "60000 x 60000 pixels are too many"},
};

QDir museum()
{
    return QDir(QStringLiteral(QORVANE_TEST_DATA));
}

QString pathOf(const char *name)
{
    return museum().filePath(QString::fromUtf8(name));
}

std::optional<QImage> thumbnailOf(const char *name, QString &reason)
{
    const QString path = pathOf(name);
    if (isVideoFile(FileUrl::file(path)))
        return offMainThread([&] { return generateVideoFrame(path, 800, &reason); });
    const auto source = ImageSource::open(path, &reason);
    return source ? source->thumbnail(800, &reason) : std::nullopt;
}

bool isNear(QRgb a, QRgb b, int tolerance)
{
    return qAbs(qRed(a) - qRed(b)) <= tolerance && qAbs(qGreen(a) - qGreen(b)) <= tolerance &&
           qAbs(qBlue(a) - qBlue(b)) <= tolerance && qAlpha(a) == qAlpha(b);
}

void expectAt(const QImage &image, const std::vector<std::pair<QPointF, QRgb>> &colours)
{
    // What a JPEG's quantising leaves of a plain colour, and a profile that was passed over.
    constexpr int tolerance = 12;
    for (const auto &[place, colour] : colours) {
        const QPoint pixel(int(place.x() * image.width()), int(place.y() * image.height()));
        EXPECT_PRED3(isNear, image.pixel(pixel), colour, tolerance)
            << std::hex << "at " << pixel.x() << ',' << pixel.y();
    }
}

void expectSight(const QImage &image, Sight sight)
{
    const auto gray = [](int value) { return qRgb(value, value, value); };
    switch (sight) {
    case Sight::quarters:
        expectAt(image, {{{0.25, 0.25}, 0xffff0000},
                         {{0.75, 0.25}, 0xff00ff00},
                         {{0.25, 0.75}, 0xff0000ff},
                         {{0.75, 0.75}, 0xffffffff}});
        break;
    case Sight::grays:
        expectAt(image, {{{0.25, 0.25}, gray(qGray(0xffff0000))},
                         {{0.75, 0.25}, gray(qGray(0xff00ff00))},
                         {{0.25, 0.75}, gray(qGray(0xff0000ff))},
                         {{0.75, 0.75}, gray(255)}});
        break;
    case Sight::ramp:
        expectAt(image, {{{0, 0.5}, gray(0)},
                         {{0.5, 0.2}, gray(24 * 255 / 47)},
                         {{0.5, 0.9}, gray(24 * 255 / 47)},
                         {{0.99, 0.5}, gray(255)}});
        break;
    case Sight::any:
        break;
    }
}

std::optional<QImage> thumbnailOf(const char *name)
{
    QString reason;
    return thumbnailOf(name, reason);
}

void PrintTo(const Expectation &expectation, std::ostream *out)
{
    *out << expectation.name;
}

class MuseumTest : public testing::TestWithParam<Expectation>
{
};

} // namespace

TEST_P(MuseumTest, BehavesAsExpected)
{
    const Expectation &expected = GetParam();
    QString reason;
    const std::optional<QImage> image = thumbnailOf(expected.name, reason);
    if (!expected.size || (expected.isLeftToTheLibrary && !image)) {
        EXPECT_FALSE(image);
        EXPECT_TRUE(reason.contains(QLatin1String(expected.reason))) << qPrintable(reason);
        return;
    }
    ASSERT_TRUE(image) << qPrintable(reason);
    ASSERT_EQ(image->size(), *expected.size);
    expectSight(*image, expected.sight);
    EXPECT_EQ(ImageSource::open(pathOf(expected.name))->orientation(), expected.orientation);
}

INSTANTIATE_TEST_SUITE_P(Museum, MuseumTest, testing::ValuesIn(expectations),
                         [](const testing::TestParamInfo<Expectation> &file) {
                             std::string name;
                             for (const char letter : std::string(file.param.name))
                                 name += std::isalnum(uchar(letter)) ? letter : '_';
                             return name;
                         });

TEST(MuseumInventoryTest, EveryFileIsExpectedAndExplained)
{
    QFile file(museum().filePath(QStringLiteral("README.md")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList explained;
    auto lines = QRegularExpression(QStringLiteral("^\\| `(.+?)` \\| .{10,} \\|$"),
                                    QRegularExpression::MultilineOption)
                     .globalMatch(QString::fromUtf8(file.readAll()));
    while (lines.hasNext())
        explained += lines.next().captured(1);
    QStringList there = museum().entryList(QDir::Files | QDir::Hidden);
    there.removeOne(QStringLiteral("README.md"));
    QStringList expected;
    for (const Expectation &expectation : expectations)
        expected += QString::fromUtf8(expectation.name);
    explained.sort();
    there.sort();
    expected.sort();
    EXPECT_EQ(there, expected);
    EXPECT_EQ(there, explained);
}

TEST(MuseumInventoryTest, ItIsSmall)
{
    qint64 size = 0;
    for (const QFileInfo &file : museum().entryInfoList(QDir::Files | QDir::Hidden))
        size += file.size();
    EXPECT_LT(size, 300'000);
}

TEST(MuseumPictureTest, HalfAPictureShowsItsUpperHalf)
{
    for (const char *name : {"half.jpg", "half.gif"}) {
        const auto image = thumbnailOf(name);
        ASSERT_TRUE(image) << name;
        expectAt(*image, {{{0.25, 0.1}, 0xffff0000}, {{0.75, 0.1}, 0xff00ff00}});
    }
    const auto png = thumbnailOf("half.png");
    ASSERT_TRUE(png);
    EXPECT_EQ(png->pixel(90, 4), qRgb(90 * 255 / 120, 4 * 255 / 80, 128));
}

TEST(MuseumPictureTest, TransparencyIsKept)
{
    for (const char *name : {"gray-alpha.png", "profile-noise.png"}) {
        const auto image = thumbnailOf(name);
        ASSERT_TRUE(image) << name;
        EXPECT_EQ(image->pixel(10, 10), qRgb(128, 128, 128));
        EXPECT_EQ(qAlpha(image->pixel(40, 10)), 0);
    }
}

TEST(MuseumPictureTest, FloatsWithinTheDisplaysRangeAreOnlyEncoded)
{
    const auto image = thumbnailOf("float.tif");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->pixel(0, 16), qRgb(0, 0, 0));
    EXPECT_NEAR(qRed(image->pixel(24, 16)), 189, 2); // half the light
    EXPECT_EQ(image->pixel(47, 16), qRgb(255, 255, 255));
}

TEST(MuseumPictureTest, SinglePixelsAreInTheirPlaces)
{
    const auto bits = thumbnailOf("1-bit.png");
    const auto comments = thumbnailOf("comments.ppm");
    const auto dot = thumbnailOf("1x1.gif");
    ASSERT_TRUE(bits && comments && dot);
    EXPECT_EQ(bits->pixel(3, 0), qRgb(255, 255, 255));
    EXPECT_EQ(bits->pixel(4, 0), qRgb(0, 0, 0));
    EXPECT_EQ(bits->pixel(3, 1), qRgb(0, 0, 0));
    EXPECT_EQ(comments->pixel(1, 0), qRgb(0, 255, 0));
    EXPECT_EQ(dot->pixel(0, 0), qRgb(255, 0, 0));
}

TEST(MuseumPictureTest, APreviewOfAnotherPictureIsShownAllTheSame)
{
    const auto image = thumbnailOf("other-preview.jpg");
    ASSERT_TRUE(image);
    EXPECT_PRED3(isNear, image->pixel(6, 4), 0xff0000ffU, 12);
}
