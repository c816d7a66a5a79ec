#include "semantic/Encoder.h"

#include "encoders/TestEncoders.h"
#include "semantic/Preprocessing.h"

#include <QColor>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <thread>

using namespace Qorvane;
using testing::Each;
using testing::FloatNear;

namespace {

// The elements of the test encoders' vectors; see tests/encoders/make_test_encoders.py.
enum Axis : size_t { red, green, blue, yellow, bright, dark, topBright, centreBright, picture };
constexpr size_t openaiLength = 16;
constexpr size_t contextLength = 77;
constexpr qint32 idOfRed = 320;
constexpr qint32 idOfDark = 325;

std::shared_ptr<const VisionEncoder> visionEncoder(const QString &name)
{
    QString error;
    auto encoder = VisionEncoder::load(testEncoderPath(name), &error);
    EXPECT_TRUE(encoder) << qPrintable(error);
    return encoder;
}

std::shared_ptr<const TextEncoder> textEncoder(const QString &name)
{
    QString error;
    auto encoder = TextEncoder::load(testEncoderPath(name), &error);
    EXPECT_TRUE(encoder) << qPrintable(error);
    return encoder;
}

std::vector<float> pixelsOf(const QImage &image)
{
    return preprocessImage(image).value_or(std::vector<float>{});
}

EncoderResult predictRed(const QString &name)
{
    const auto encoder = visionEncoder(name);
    return encoder ? encoder->predict(pixelsOf(plainPicture(Qt::red))) : EncoderResult{};
}

/// Ids with `words` behind a start token, padded, with their mask.
std::pair<std::vector<qint32>, std::vector<qint32>> textInput(const std::vector<qint32> &words)
{
    std::vector<qint32> ids{49406};
    ids.insert(ids.end(), words.begin(), words.end());
    ids.push_back(49407);
    std::vector<qint32> mask(ids.size(), 1);
    ids.resize(contextLength, 0);
    mask.resize(contextLength, 0);
    return {ids, mask};
}

} // namespace

TEST(VisionEncoder, measuresThePictureItIsGiven)
{
    const EncoderResult result = predictRed(QStringLiteral("openai/ClipVisionEncoder.onnx"));
    ASSERT_EQ(result.outcome, EncoderResult::Outcome::succeeded) << qPrintable(result.error);
    ASSERT_EQ(result.features.size(), openaiLength);
    EXPECT_NEAR(result.features[red], 1, 1e-4);
    EXPECT_NEAR(result.features[green], 0, 1e-4);
    EXPECT_NEAR(result.features[dark], 0.5 - 1 / 3.0, 1e-4);
    EXPECT_NEAR(result.features[picture], 0.05, 1e-4);
}

TEST(VisionEncoder, seesTheUpperHalfOfThePictureInTheLowerRowsOfTheTensor)
{
    QImage image = plainPicture(Qt::black, {100, 100});
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 100; ++x)
            image.setPixel(x, y, qRgb(255, 255, 255));
    }
    const auto encoder = visionEncoder(QStringLiteral("openai/ClipVisionEncoder.onnx"));
    EXPECT_NEAR(encoder->predict(pixelsOf(image)).features[topBright], 0.5, 0.01);
    EXPECT_NEAR(encoder->predict(pixelsOf(image.mirrored())).features[topBright], 0, 0.01);
}

TEST(VisionEncoder, flattensOtherNumberTypesToFloats)
{
    const EncoderResult plain = predictRed(QStringLiteral("openai/ClipVisionEncoder.onnx"));
    for (const char *name : {"variants/VisionDouble.onnx", "variants/VisionHalf.onnx"}) {
        const EncoderResult result = predictRed(QString::fromLatin1(name));
        ASSERT_EQ(result.outcome, EncoderResult::Outcome::succeeded) << name << qPrintable(result.error);
        EXPECT_THAT(result.features, testing::Pointwise(FloatNear(1e-3f), plain.features)) << name;
    }
    const EncoderResult integers = predictRed(QStringLiteral("variants/VisionInteger.onnx"));
    ASSERT_EQ(integers.outcome, EncoderResult::Outcome::succeeded) << qPrintable(integers.error);
    EXPECT_NEAR(integers.features[red], 100, 1);
    EXPECT_EQ(integers.features[dark], 16);
}

TEST(VisionEncoder, handsOnElementsThatAreNotFinite)
{
    const EncoderResult result = predictRed(QStringLiteral("variants/VisionNaN.onnx"));
    ASSERT_EQ(result.outcome, EncoderResult::Outcome::succeeded);
    EXPECT_TRUE(std::isnan(result.features[green]));
    EXPECT_TRUE(std::isinf(result.features[blue]));
}

TEST(VisionEncoder, tellsAMissingFeatureFromAFailedRun)
{
    EXPECT_EQ(predictRed(QStringLiteral("variants/VisionOtherOutput.onnx")).outcome,
              EncoderResult::Outcome::featureMissing);
    EXPECT_EQ(predictRed(QStringLiteral("variants/VisionText.onnx")).outcome,
              EncoderResult::Outcome::featureMissing);

    const EncoderResult failed = predictRed(QStringLiteral("openai/ClipTextEncoder.onnx"));
    EXPECT_EQ(failed.outcome, EncoderResult::Outcome::failed);
    EXPECT_TRUE(failed.error.contains(QStringLiteral("pixel_values"))) << qPrintable(failed.error);
}

TEST(VisionEncoder, refusesATensorOfAnotherLength)
{
    const auto encoder = visionEncoder(QStringLiteral("openai/ClipVisionEncoder.onnx"));
    const EncoderResult result = encoder->predict(std::vector<float>(12));
    EXPECT_EQ(result.outcome, EncoderResult::Outcome::failed);
    EXPECT_FALSE(result.error.isEmpty());
}

TEST(VisionEncoder, saysWhyAFileCannotBeLoaded)
{
    QString error;
    EXPECT_FALSE(VisionEncoder::load(testEncoderPath(QStringLiteral("variants/NotAnEncoder.onnx")), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("NotAnEncoder.onnx"))) << qPrintable(error);

    error.clear();
    EXPECT_FALSE(VisionEncoder::load(testEncoderPath(QStringLiteral("no/such.onnx")), &error));
    EXPECT_FALSE(error.isEmpty());
}

TEST(VisionEncoder, givesTheSameToSeveralThreadsAtOnce)
{
    const auto encoder = visionEncoder(QStringLiteral("openai/ClipVisionEncoder.onnx"));
    const std::vector<float> pixels = pixelsOf(plainPicture(QColor(10, 200, 90)));
    const EncoderResult alone = encoder->predict(pixels);

    constexpr size_t threadCount = 4;
    std::array<std::vector<EncoderResult>, threadCount> results;
    std::vector<std::thread> threads;
    for (auto &own : results) {
        threads.emplace_back([&own, &encoder, &pixels] {
            for (int run = 0; run < 10; ++run)
                own.push_back(encoder->predict(pixels));
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    for (const auto &own : results) {
        EXPECT_EQ(own.size(), 10u);
        EXPECT_THAT(own, Each(alone));
    }
}

TEST(TextEncoder, addsUpTheWordsThatTheMaskShows)
{
    const auto encoder = textEncoder(QStringLiteral("openai/ClipTextEncoder.onnx"));
    auto [ids, mask] = textInput({idOfRed, idOfDark});
    const EncoderResult both = encoder->predict(ids, mask);
    ASSERT_EQ(both.outcome, EncoderResult::Outcome::succeeded) << qPrintable(both.error);
    ASSERT_EQ(both.features.size(), openaiLength);
    EXPECT_EQ(both.features[red], 1);
    EXPECT_EQ(both.features[dark], 1);
    EXPECT_EQ(both.features[blue], 0);

    mask[2] = 0;
    const EncoderResult masked = encoder->predict(ids, mask);
    EXPECT_EQ(masked.features[red], 1);
    EXPECT_EQ(masked.features[dark], 0);
}

TEST(TextEncoder, refusesAnotherContextLength)
{
    const auto encoder = textEncoder(QStringLiteral("openai/ClipTextEncoder.onnx"));
    const EncoderResult result = encoder->predict({1, 2, 3}, {1, 1, 1});
    EXPECT_EQ(result.outcome, EncoderResult::Outcome::failed);
    EXPECT_FALSE(result.error.isEmpty());
}

TEST(TextEncoder, flattensDoublesAndTellsAMissingFeature)
{
    const auto [ids, mask] = textInput({idOfRed});
    const EncoderResult doubles = textEncoder(QStringLiteral("variants/TextDouble.onnx"))->predict(ids, mask);
    ASSERT_EQ(doubles.outcome, EncoderResult::Outcome::succeeded) << qPrintable(doubles.error);
    EXPECT_EQ(doubles.features[red], 1);

    EXPECT_EQ(textEncoder(QStringLiteral("variants/TextOtherOutput.onnx"))->predict(ids, mask).outcome,
              EncoderResult::Outcome::featureMissing);
}
