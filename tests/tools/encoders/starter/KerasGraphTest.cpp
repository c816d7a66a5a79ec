#include "encoders/starter/KerasGraph.h"

#include "TinyKeras.h"
#include "encoders/graph/GraphRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace Qorvane::Encoders {
namespace {

QString text(const char *characters)
{
    return QString::fromLatin1(characters);
}

/// A picture as Keras has it: channels last.
struct Picture
{
    int height = 0;
    int width = 0;
    int channels = 0;
    std::vector<double> values;

    Picture(int rows, int columns, int depth)
        : height(rows)
        , width(columns)
        , channels(depth)
        , values(size_t(rows * columns * depth), 0.0)
    {
    }
    double &at(int y, int x, int channel) { return values[size_t((y * width + x) * channels + channel)]; }
    double at(int y, int x, int channel) const
    {
        return values[size_t((y * width + x) * channels + channel)];
    }
    double padded(int y, int x, int channel, double outside) const
    {
        return y < 0 || x < 0 || y >= height || x >= width ? outside : at(y, x, channel);
    }
};

// What the layers mean, loop by loop.
Picture zeroPadded(const Picture &in, int top, int bottom, int left, int right)
{
    Picture out(in.height + top + bottom, in.width + left + right, in.channels);
    for (int y = 0; y < in.height; ++y)
        for (int x = 0; x < in.width; ++x)
            for (int c = 0; c < in.channels; ++c)
                out.at(y + top, x + left, c) = in.at(y, x, c);
    return out;
}

Picture convolved(const Picture &in, const std::vector<float> &kernel, int rows, int columns, int outputs,
                  int step, bool isSame)
{
    const int height = isSame ? (in.height + step - 1) / step : (in.height - rows) / step + 1;
    const int width = isSame ? (in.width + step - 1) / step : (in.width - columns) / step + 1;
    const int top = isSame ? std::max(0, (height - 1) * step + rows - in.height) / 2 : 0;
    const int left = isSame ? std::max(0, (width - 1) * step + columns - in.width) / 2 : 0;
    Picture out(height, width, outputs);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int o = 0; o < outputs; ++o)
                for (int i = 0; i < rows; ++i)
                    for (int j = 0; j < columns; ++j)
                        for (int c = 0; c < in.channels; ++c)
                            out.at(y, x, o) +=
                                in.padded(y * step + i - top, x * step + j - left, c, 0) *
                                kernel[size_t(((i * columns + j) * in.channels + c) * outputs + o)];
    return out;
}

template <typename Function>
Picture each(Picture in, const Function &function)
{
    for (int y = 0; y < in.height; ++y)
        for (int x = 0; x < in.width; ++x)
            for (int c = 0; c < in.channels; ++c)
                in.at(y, x, c) = function(in.at(y, x, c), c, y, x);
    return in;
}

Picture maxPooled(const Picture &in, int size, int step)
{
    Picture out((in.height - size) / step + 1, (in.width - size) / step + 1, in.channels);
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x)
            for (int c = 0; c < in.channels; ++c) {
                double greatest = in.at(y * step, x * step, c);
                for (int i = 0; i < size; ++i)
                    for (int j = 0; j < size; ++j)
                        greatest = std::max(greatest, in.at(y * step + i, x * step + j, c));
                out.at(y, x, c) = greatest;
            }
    return out;
}

constexpr double epsilon = 0.001;

class KerasGraphTest : public testing::Test
{
protected:
    static QJsonObject convolution(int step, const char *padding)
    {
        return {{text("strides"), QJsonArray{step, step}},
                {text("dilation_rate"), QJsonArray{1, 1}},
                {text("padding"), text(padding)},
                {text("activation"), text("linear")}};
    }

    void addNormalization(const QString &name, const QString &input, int channels)
    {
        m_network.add(text("BatchNormalization"), name, {input}, {{text("epsilon"), epsilon}});
        m_network.addWeight(name + text("/gamma"), {channels}, 0.5f, 1.5f);
        m_network.addWeight(name + text("/beta"), {channels}, -1, 1);
        m_network.addWeight(name + text("/moving_mean"), {channels}, -1, 1);
        m_network.addWeight(name + text("/moving_variance"), {channels}, 0.2f, 2);
    }

    /// All kinds of layers; one normalisation behind a convolution, one elsewhere.
    void addLayers()
    {
        m_network.add(text("InputLayer"), text("in"), {});
        m_network.add(text("ZeroPadding2D"), text("pad"), {text("in")},
                      {{text("padding"), QJsonArray{QJsonArray{1, 2}, QJsonArray{0, 3}}}});
        m_network.add(text("Conv2D"), text("c1"), {text("pad")}, convolution(2, "valid"));
        m_network.addWeight(text("c1/kernel"), {3, 2, 2, 4}, -1, 1);
        m_network.addWeight(text("c1/bias"), {4}, -1, 1);
        addNormalization(text("b1"), text("c1"), 4);
        m_network.add(text("Activation"), text("a1"), {text("b1")}, {{text("activation"), text("relu")}});
        m_network.add(text("Conv2D"), text("c2"), {text("a1")}, convolution(1, "same"));
        m_network.addWeight(text("c2/kernel"), {2, 2, 4, 4}, -1, 1);
        m_network.add(text("Add"), text("sum"), {text("c2"), text("a1")});
        addNormalization(text("b2"), text("sum"), 4);
        m_network.add(text("MaxPooling2D"), text("pool"), {text("b2")},
                      {{text("pool_size"), QJsonArray{2, 2}},
                       {text("strides"), QJsonArray{1, 1}},
                       {text("padding"), text("valid")}});
        m_network.add(text("GlobalAveragePooling2D"), text("mean"), {text("pool")});
        m_network.add(text("Dense"), text("out"), {text("mean")}, {{text("activation"), text("softmax")}});
        m_network.addWeight(text("out/kernel"), {4, 5}, -2, 2);
        m_network.addWeight(text("out/bias"), {5}, -1, 1);
    }

    Picture normalized(const Picture &in, const QString &name) const
    {
        return each(in, [&](double value, int c, int, int) {
            const auto weight = [&](const char *kind) {
                return m_network.values(name + text(kind))[size_t(c)];
            };
            return (value - weight("/moving_mean")) / std::sqrt(weight("/moving_variance") + epsilon) *
                       weight("/gamma") +
                   weight("/beta");
        });
    }

    std::vector<double> expected(const Picture &in) const
    {
        const auto &bias = m_network.values(text("c1/bias"));
        Picture first =
            convolved(zeroPadded(in, 1, 2, 0, 3), m_network.values(text("c1/kernel")), 3, 2, 4, 2, false);
        first = each(first, [&](double value, int c, int, int) { return value + bias[size_t(c)]; });
        first = each(normalized(first, text("b1")),
                     [](double value, int, int, int) { return std::max(value, 0.0); });
        const Picture second = convolved(first, m_network.values(text("c2/kernel")), 2, 2, 4, 1, true);
        const Picture sum =
            each(second, [&](double value, int c, int y, int x) { return value + first.at(y, x, c); });
        const Picture pooled = maxPooled(normalized(sum, text("b2")), 2, 1);
        std::vector<double> scores;
        double total = 0;
        for (int o = 0; o < 5; ++o) {
            double score = m_network.values(text("out/bias"))[size_t(o)];
            for (int c = 0; c < 4; ++c) {
                double mean = 0;
                for (int y = 0; y < pooled.height; ++y)
                    for (int x = 0; x < pooled.width; ++x)
                        mean += pooled.at(y, x, c) / (pooled.height * pooled.width);
                score += mean * m_network.values(text("out/kernel"))[size_t(c * 5 + o)];
            }
            scores.push_back(std::exp(score));
            total += scores.back();
        }
        for (double &score : scores)
            score /= total;
        return scores;
    }

    TinyKeras m_network;
};

TEST_F(KerasGraphTest, ComputesWhatTheLayersMean)
{
    addLayers();
    const auto model = m_network.model();
    ASSERT_TRUE(model) << model.error().text().toStdString();
    onnx::ModelProto made = GraphBuilder::emptyModel(17, "tiny");
    GraphBuilder builder(*made.mutable_graph());
    builder.input("picture", onnx::TensorProto::FLOAT, {1, 2, 9, 8});
    const auto output = KerasGraph(*model, builder).append("picture");
    ASSERT_TRUE(output) << output.error().text().toStdString();
    builder.output(*output, onnx::TensorProto::FLOAT, {1, 5});

    Picture picture(9, 8, 2);
    std::mt19937 random(3);
    picture = each(picture, [&](double, int, int, int) { return double(random() % 200) / 100 - 1; });
    std::vector<double> channelsFirst;
    for (int c = 0; c < 2; ++c)
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 8; ++x)
                channelsFirst.push_back(picture.at(y, x, c));

    auto run = GraphRun::fromBytes(made.SerializeAsString());
    ASSERT_TRUE(run) << run.error().text().toStdString();
    const auto result = run->run(
        {{text("picture"), Tensor::of(onnx::TensorProto::FLOAT, {1, 2, 9, 8}, channelsFirst)}}, *output);
    ASSERT_TRUE(result) << result.error().text().toStdString();
    const std::vector<double> wanted = expected(picture);
    ASSERT_EQ(result->values.size(), wanted.size());
    for (size_t index = 0; index < wanted.size(); ++index)
        EXPECT_NEAR(double(result->values[index]), wanted[index], 1e-5);
}

TEST_F(KerasGraphTest, ANormalizationBehindAConvolutionCostsNoNode)
{
    addLayers();
    onnx::ModelProto made = GraphBuilder::emptyModel(17, "tiny");
    GraphBuilder builder(*made.mutable_graph());
    builder.input("picture", onnx::TensorProto::FLOAT, {1, 2, 9, 8});
    ASSERT_TRUE(KerasGraph(*m_network.model(), builder).append("picture", text("b1")));
    ASSERT_EQ(made.graph().node_size(), 2);
    EXPECT_EQ(made.graph().node(1).op_type(), "Conv");
}

TEST_F(KerasGraphTest, NamesALayerThatItDoesNotKnow)
{
    m_network.add(text("InputLayer"), text("in"), {});
    m_network.add(text("SeparableConv2D"), text("odd"), {text("in")});
    const auto model = m_network.model();
    ASSERT_TRUE(model);
    onnx::ModelProto made = GraphBuilder::emptyModel(17, "tiny");
    GraphBuilder builder(*made.mutable_graph());
    const auto output = KerasGraph(*model, builder).append("picture");
    ASSERT_FALSE(output);
    EXPECT_TRUE(output.error().found.contains(text("SeparableConv2D \"odd\"")));
}

TEST_F(KerasGraphTest, RefusesShardsThatEndTooEarly)
{
    addLayers();
    const auto model = KerasModel::read(
        m_network.json(), [&](const QString &name) { return m_network.shard(name).chopped(40); });
    ASSERT_FALSE(model);
    EXPECT_TRUE(model.error().found.contains(text("out/")));
}

} // namespace
} // namespace Qorvane::Encoders
