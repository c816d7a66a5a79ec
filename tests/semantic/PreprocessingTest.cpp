#include "semantic/Preprocessing.h"

#include "semantic/ReferencePreprocessing.h"

#include <QColorSpace>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

using namespace Qorvane;

namespace {

constexpr size_t planeLength = size_t(encoderSide) * encoderSide;
constexpr float deviations[3] = {0.26862955f, 0.2613026f, 0.2757771f};
constexpr float means[3] = {0.48145467f, 0.4578275f, 0.40821072f};

float at(const std::vector<float> &tensor, size_t channel, int y, int x)
{
    return tensor[channel * planeLength + size_t(y) * encoderSide + size_t(x)];
}

/// A tensor element turned back into the byte it came from, 0 to 255.
double byteOf(float element, size_t channel)
{
    return (double(element) * deviations[channel] + means[channel]) * 255.0;
}

float expectedElement(int byte, size_t channel)
{
    return (float(byte) / 255.0f - means[channel]) / deviations[channel];
}

/// Smooth gradients, hard edges and noise: what resampling gets wrong first.
QImage awkwardPicture(QSize size, QImage::Format format)
{
    std::mt19937 random(1);
    QImage picture(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int noise = int(random() % 64);
            const int red = (x * 255 / std::max(1, size.width() - 1)) * 3 / 4 + noise;
            const int green = (y / 5 % 2) ? 240 : 10;
            const int blue = ((x + y) * 7) % 256;
            const int alpha = 255 - (x * 131 + y * 17) % 256;
            picture.setPixel(x, y, qRgba(red, green, blue, alpha));
        }
    }
    return picture.convertToFormat(format);
}

double largestByteDifference(const QImage &picture)
{
    const auto tensor = preprocessImage(picture);
    EXPECT_TRUE(tensor.has_value());
    if (!tensor)
        return 256;
    const std::vector<double> expected = referenceBytes(picture);
    double largest = 0;
    for (size_t index = 0; index < expected.size(); ++index)
        largest =
            std::max(largest, std::abs(byteOf((*tensor)[index], index / planeLength) - expected[index]));
    return largest;
}

struct SizeCase
{
    const char *name;
    QSize size;
    QImage::Format format = QImage::Format_RGB32;
};

class PreprocessingOfSizes : public testing::TestWithParam<SizeCase>
{
};

} // namespace

TEST_P(PreprocessingOfSizes, agreesWithTheDoublePrecisionReference)
{
    EXPECT_LE(largestByteDifference(awkwardPicture(GetParam().size, GetParam().format)), 1.0);
}

INSTANTIATE_TEST_SUITE_P(
    Preprocessing, PreprocessingOfSizes,
    testing::Values(SizeCase{"ExactlyTheEncodersSize", {224, 224}}, SizeCase{"Landscape", {800, 533}},
                    SizeCase{"Portrait", {533, 800}}, SizeCase{"OddLandscape", {301, 225}},
                    SizeCase{"OddPortrait", {227, 641}}, SizeCase{"OneOff", {225, 224}},
                    SizeCase{"Enlarged", {37, 53}}, SizeCase{"SinglePixel", {1, 1}},
                    SizeCase{"ThreeByTwo", {3, 2}}, SizeCase{"OnePixelHigh", {500, 1}},
                    SizeCase{"OnePixelWide", {1, 500}}, SizeCase{"HugePanorama", {10000, 50}},
                    SizeCase{"HugeTower", {50, 10000}}, SizeCase{"WidePanorama", {2000, 300}},
                    SizeCase{"Large", {1603, 1201}}, SizeCase{"Alpha", {400, 300}, QImage::Format_ARGB32},
                    SizeCase{"PremultipliedAlpha", {300, 401}, QImage::Format_ARGB32_Premultiplied},
                    SizeCase{"Rgb888", {299, 401}, QImage::Format_RGB888},
                    SizeCase{"Grey", {640, 480}, QImage::Format_Grayscale8},
                    SizeCase{"SixteenBit", {320, 240}, QImage::Format_RGBX64}),
    [](const testing::TestParamInfo<SizeCase> &testCase) { return testCase.param.name; });

TEST(Preprocessing, mirrorsThePictureVertically)
{
    QImage picture(400, 300, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    for (int y = 0; y < 150; ++y) {
        for (int x = 0; x < 400; ++x)
            picture.setPixel(x, y, qRgb(255, 0, 0));
    }
    const auto tensor = preprocessImage(picture);
    ASSERT_TRUE(tensor);
    EXPECT_EQ(at(*tensor, 0, 0, 100), expectedElement(0, 0));
    EXPECT_EQ(at(*tensor, 2, 0, 100), expectedElement(255, 2));
    EXPECT_EQ(at(*tensor, 0, 223, 100), expectedElement(255, 0));
    EXPECT_EQ(at(*tensor, 2, 223, 100), expectedElement(0, 2));
}

TEST(Preprocessing, keepsLeftOnTheLeft)
{
    QImage picture(224, 224, QImage::Format_RGB32);
    picture.fill(Qt::black);
    for (int y = 0; y < 224; ++y)
        picture.setPixel(0, y, qRgb(255, 255, 255));
    const auto tensor = preprocessImage(picture);
    ASSERT_TRUE(tensor);
    EXPECT_EQ(at(*tensor, 1, 17, 0), expectedElement(255, 1));
    EXPECT_EQ(at(*tensor, 1, 17, 223), expectedElement(0, 1));
}

TEST(Preprocessing, cropsAQuarterOffEachSideOfATwoToOnePicture)
{
    // Scaled by 0.448 to 448 x 224 and drawn at x = -112: source columns 250 to 749 are seen.
    QImage picture(1000, 500, QImage::Format_RGB32);
    picture.fill(QColor(0, 200, 0));
    for (int y = 0; y < 500; ++y) {
        for (int x = 0; x < 250; ++x) {
            picture.setPixel(x, y, qRgb(255, 0, 0));
            picture.setPixel(999 - x, y, qRgb(0, 0, 255));
        }
    }
    const auto tensor = preprocessImage(picture);
    ASSERT_TRUE(tensor);
    // Beyond the filter's reach from the crop's edges nothing of the cropped parts shows...
    for (int x = 4; x < 220; ++x) {
        ASSERT_EQ(at(*tensor, 0, 112, x), expectedElement(0, 0)) << x;
        ASSERT_EQ(at(*tensor, 2, 112, x), expectedElement(0, 2)) << x;
    }
    // ...and the first and last columns still are the middle part.
    EXPECT_NEAR(byteOf(at(*tensor, 1, 112, 0), 1), 200, 20);
    EXPECT_NEAR(byteOf(at(*tensor, 1, 112, 223), 1), 200, 20);
}

TEST(Preprocessing, givesAConstantPerChannelForAPictureOfOneColour)
{
    for (const QSize size : {QSize(1, 1), QSize(640, 427), QSize(31, 1999)}) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(QColor(200, 100, 7));
        const auto tensor = preprocessImage(picture);
        ASSERT_TRUE(tensor);
        ASSERT_EQ(tensor->size(), 3 * planeLength);
        for (size_t index = 0; index < tensor->size(); ++index) {
            const size_t channel = index / planeLength;
            const int byte = channel == 0 ? 200 : channel == 1 ? 100 : 7;
            ASSERT_EQ((*tensor)[index], expectedElement(byte, channel)) << index;
        }
    }
}

TEST(Preprocessing, normalisesWithTheExactConstants)
{
    constexpr uint32_t bits[2][3] = {{0x3EF6813A, 0x3EEA685E, 0x3ED100FF},
                                     {0x3E8989D0, 0x3E85C974, 0x3E8D32A8}};
    QImage picture(10, 10, QImage::Format_RGB32);
    picture.fill(QColor(51, 51, 51));
    const auto tensor = preprocessImage(picture);
    ASSERT_TRUE(tensor);
    for (size_t channel = 0; channel < 3; ++channel) {
        const float expected = (51.0f / 255.0f - std::bit_cast<float>(bits[0][channel])) /
                               std::bit_cast<float>(bits[1][channel]);
        EXPECT_EQ(std::bit_cast<uint32_t>(at(*tensor, channel, 100, 100)), std::bit_cast<uint32_t>(expected));
    }
}

TEST(Preprocessing, showsTransparentAreasBlackAndTakesPremultipliedColoursAsTheyStand)
{
    QImage transparent(50, 50, QImage::Format_ARGB32);
    transparent.fill(qRgba(255, 255, 255, 0));
    const auto black = preprocessImage(transparent);
    ASSERT_TRUE(black);
    EXPECT_EQ(at(*black, 0, 10, 10), expectedElement(0, 0));

    QImage half(50, 50, QImage::Format_ARGB32);
    half.fill(qRgba(200, 200, 200, 128));
    const auto grey = preprocessImage(half);
    ASSERT_TRUE(grey);
    EXPECT_NEAR(byteOf(at(*grey, 0, 10, 10), 0), 200 * 128 / 255.0, 1.0);
}

TEST(Preprocessing, convertsOtherColourSpacesToSrgb)
{
    QImage picture(20, 20, QImage::Format_RGB32);
    picture.fill(QColor(128, 128, 128));
    picture.setColorSpace(QColorSpace(QColorSpace::SRgbLinear));
    const auto tensor = preprocessImage(picture);
    ASSERT_TRUE(tensor);
    // Half the light is 188 of 255 in sRGB.
    EXPECT_NEAR(byteOf(at(*tensor, 0, 5, 5), 0), 188, 1.0);
}

TEST(Preprocessing, givesNothingForAnImageWithoutPixels)
{
    EXPECT_FALSE(preprocessImage(QImage()).has_value());
}
