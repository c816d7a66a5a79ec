#include "encoders/starter/StarterVision.h"

#include "TinyKeras.h"
#include "encoders/graph/GraphRun.h"
#include "semantic/Preprocessing.h"

#include <QImage>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numeric>

namespace Qorvane::Encoders {
namespace {

QString text(const char *characters)
{
    return QString::fromLatin1(characters);
}

/// A classifier of four classes by mean colours, whose last map is the picture in 7 x 7 parts.
TinyKeras colourClassifier()
{
    TinyKeras network;
    network.add(text("InputLayer"), text("in"), {});
    network.add(text("MaxPooling2D"), text("parts"), {text("in")},
                {{text("pool_size"), QJsonArray{32, 32}},
                 {text("strides"), QJsonArray{32, 32}},
                 {text("padding"), text("valid")}});
    network.add(text("GlobalAveragePooling2D"), text("mean"), {text("parts")});
    network.add(text("Dense"), text("out"), {text("mean")}, {{text("activation"), text("softmax")}});
    network.addWeight(text("out/kernel"), {3, 4}, -0.05f, 0.05f);
    network.addWeight(text("out/bias"), {4}, -1, 1);
    return network;
}

// What the whole is meant to compute for a picture whose parts have one colour each, by place.
std::vector<double> expected(const TinyKeras &network, const std::vector<std::array<double, 3>> &rowColours)
{
    constexpr std::array<double, 3> mean{123.68, 116.779, 103.939};
    const auto probabilities = [&](const std::array<double, 3> &colour) {
        std::vector<double> scores;
        double total = 0;
        for (size_t label = 0; label < 4; ++label) {
            double score = network.values(text("out/bias"))[label];
            // The network sees blue first.
            for (size_t channel = 0; channel < 3; ++channel)
                score += (colour[2 - channel] - mean[2 - channel]) *
                         network.values(text("out/kernel"))[channel * 4 + label];
            scores.push_back(std::exp(score / 2.5));
            total += scores.back();
        }
        for (double &score : scores)
            score /= total;
        return scores;
    };
    const auto meanOf = [&](size_t first, size_t count) {
        std::array<double, 3> sum{};
        for (size_t row = first; row < first + count; ++row) {
            for (size_t channel = 0; channel < 3; ++channel)
                sum[channel] += rowColours[row][channel] / double(count);
        }
        return sum;
    };
    std::vector<double> roots(4, 0.0);
    const auto add = [&](const std::vector<double> &part, double share) {
        for (size_t label = 0; label < 4; ++label)
            roots[label] += share * part[label];
    };
    add(probabilities(meanOf(0, 7)), 0.5);
    for (const size_t first : {size_t(0), size_t(2), size_t(4)})
        add(probabilities(meanOf(first, 3)), 0.5 / 3);
    double middle = 0;
    for (double &root : roots) {
        root = std::sqrt(root);
        middle += root / 4;
    }
    double squares = 0;
    for (double &root : roots) {
        root -= middle;
        squares += root * root;
    }
    for (double &root : roots)
        root /= std::sqrt(squares);
    return roots;
}

TEST(StarterVision, SeesTheApplicationsPictureUprightAndInTheClassifiersColours)
{
    const TinyKeras network = colourClassifier();
    const auto model = network.model().and_then(starterVision);
    ASSERT_TRUE(model) << model.error().text().toStdString();
    // Seven bands, so that the windows differ and the order of the rows shows.
    QImage image(224, 224, QImage::Format_RGB32);
    std::vector<std::array<double, 3>> bands;
    for (int band = 0; band < 7; ++band) {
        const QColor colour(30 * band, 255 - 20 * band * band / 4, 10 + 17 * band);
        bands.push_back({double(colour.red()), double(colour.green()), double(colour.blue())});
        for (int y = 32 * band; y < 32 * (band + 1); ++y) {
            for (int x = 0; x < 224; ++x)
                image.setPixelColor(x, y, colour);
        }
    }
    const auto pixels = preprocessImage(image);
    ASSERT_TRUE(pixels);
    auto run = GraphRun::fromBytes(model->SerializeAsString());
    ASSERT_TRUE(run) << run.error().text().toStdString();
    const auto result =
        run->run({{text("pixel_values"),
                   Tensor::of(onnx::TensorProto::FLOAT, {1, 3, 224, 224}, {pixels->begin(), pixels->end()})}},
                 "image_features");
    ASSERT_TRUE(result) << result.error().text().toStdString();
    const std::vector<double> wanted = expected(network, bands);
    ASSERT_EQ(result->values.size(), 5U);
    for (size_t label = 0; label < 4; ++label)
        EXPECT_NEAR(double(result->values[label]), wanted[label], 1e-3);
}

TEST(StarterVision, RefusesANetworkWithoutClasses)
{
    TinyKeras network;
    network.add(text("InputLayer"), text("in"), {});
    const auto model = network.model().and_then(starterVision);
    ASSERT_FALSE(model);
    EXPECT_TRUE(model.error().expected.contains(text("Dense")));
}

} // namespace
} // namespace Qorvane::Encoders
