#include "encoders/starter/KerasGraph.h"

#include <QJsonArray>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace Qorvane::Encoders {

namespace {

using Weight = KerasModel::Weight;

tl::unexpected<Problem> unsupported(const KerasModel::Layer &layer, const QString &what)
{
    return problem(QStringLiteral("a layer that can be turned into ONNX"),
                   QStringLiteral("%1 \"%2\": %3").arg(layer.kind, layer.name, what),
                   QStringLiteral("use the pinned package, unchanged"));
}

std::vector<std::int64_t> integers(const QJsonValue &value)
{
    std::vector<std::int64_t> numbers;
    for (const QJsonValue &number : value.toArray())
        numbers.push_back(number.toInteger());
    return numbers;
}

// Keras' "same" puts the odd row at the end.
NodeAttribute padding(const KerasModel::Layer &layer)
{
    const bool isSame = layer.config[QLatin1String("padding")].toString() == QLatin1String("same");
    return {"auto_pad", std::string(isSame ? "SAME_UPPER" : "VALID")};
}

/// What a batch normalisation does to each channel: multiply, then add.
struct ChannelScale
{
    std::vector<float> factors;
    std::vector<float> offsets;
};

// Scale and centre are optional in Keras; mean and variance are always there.
std::optional<ChannelScale> channelScale(const KerasModel &model, const KerasModel::Layer &layer)
{
    const Weight *mean = model.weight(layer.name + QStringLiteral("/moving_mean"));
    const Weight *variance = model.weight(layer.name + QStringLiteral("/moving_variance"));
    const Weight *gamma = model.weight(layer.name + QStringLiteral("/gamma"));
    const Weight *beta = model.weight(layer.name + QStringLiteral("/beta"));
    if (!mean || !variance || mean->values.size() != variance->values.size())
        return std::nullopt;
    const size_t count = mean->values.size();
    if ((gamma && gamma->values.size() != count) || (beta && beta->values.size() != count))
        return std::nullopt;
    const double epsilon = layer.config[QLatin1String("epsilon")].toDouble();
    ChannelScale scale;
    for (size_t channel = 0; channel < count; ++channel) {
        const double factor =
            (gamma ? gamma->values[channel] : 1.0) / std::sqrt(variance->values[channel] + epsilon);
        scale.factors.push_back(float(factor));
        scale.offsets.push_back(float((beta ? beta->values[channel] : 0.0) - mean->values[channel] * factor));
    }
    return scale;
}

// From height x width x in x out, as Keras keeps kernels, to out x in x height x width.
std::vector<float> outputsFirst(const Weight &kernel)
{
    const auto outputs = size_t(kernel.shape[3]);
    const size_t rest = kernel.values.size() / outputs;
    const auto inputs = size_t(kernel.shape[2]);
    const size_t area = rest / inputs;
    std::vector<float> values(kernel.values.size());
    for (size_t place = 0; place < area; ++place) {
        for (size_t in = 0; in < inputs; ++in) {
            const float *from = kernel.values.data() + (place * inputs + in) * outputs;
            for (size_t out = 0; out < outputs; ++out)
                values[(out * inputs + in) * area + place] = from[out];
        }
    }
    return values;
}

} // namespace

KerasGraph::KerasGraph(const KerasModel &model, GraphBuilder &builder)
    : m_model(model)
    , m_builder(builder)
{
}

Outcome<std::string> KerasGraph::append(const std::string &input, const QString &lastLayer)
{
    std::string last;
    for (const Layer &layer : m_model.layers()) {
        for (const QString &name : layer.inputs) {
            if (!m_outputs.contains(name))
                return unsupported(layer, QStringLiteral("its input \"%1\" comes behind it").arg(name));
        }
        if (layer.config[QLatin1String("data_format")].toString(QStringLiteral("channels_last")) !=
            QLatin1String("channels_last"))
            return unsupported(layer, QStringLiteral("its channels come first"));
        Outcome<std::string> output = node(layer, input);
        if (!output)
            return output;
        last = m_outputs[layer.name] = *output;
        if (layer.name == lastLayer)
            break;
    }
    return last;
}

Outcome<std::string> KerasGraph::node(const Layer &layer, const std::string &input)
{
    const QString &kind = layer.kind;
    if (kind == QLatin1String("InputLayer"))
        return input;
    if (layer.inputs.isEmpty())
        return unsupported(layer, QStringLiteral("it has no input"));
    if (kind == QLatin1String("ZeroPadding2D"))
        return zeroPadding(layer);
    if (kind == QLatin1String("Conv2D"))
        return convolution(layer);
    if (kind == QLatin1String("BatchNormalization"))
        return batchNormalization(layer);
    if (kind == QLatin1String("Activation"))
        return activated(layer, inputOf(layer));
    if (kind == QLatin1String("MaxPooling2D"))
        return maxPooling(layer);
    if (kind == QLatin1String("Add") && layer.inputs.size() == 2)
        return m_builder.node("Add", {inputOf(layer, 0), inputOf(layer, 1)});
    if (kind == QLatin1String("GlobalAveragePooling2D"))
        return m_builder.node("Flatten", {m_builder.node("GlobalAveragePool", {inputOf(layer)})});
    if (kind == QLatin1String("Dense"))
        return dense(layer);
    return unsupported(layer, QStringLiteral("this kind isn't known"));
}

const std::string &KerasGraph::inputOf(const Layer &layer, qsizetype index) const
{
    return m_outputs.at(layer.inputs.at(index));
}

Outcome<std::string> KerasGraph::zeroPadding(const Layer &layer)
{
    const QJsonArray sides = layer.config[QLatin1String("padding")].toArray();
    const std::vector<std::int64_t> rows = integers(sides.at(0));
    const std::vector<std::int64_t> columns = integers(sides.at(1));
    if (rows.size() != 2 || columns.size() != 2)
        return unsupported(layer, QStringLiteral("its padding isn't two pairs"));
    const std::array<std::int64_t, 8> pads{0, 0, rows[0], columns[0], 0, 0, rows[1], columns[1]};
    return m_builder.node("Pad", {inputOf(layer), m_builder.int64s("padding", {8}, pads)});
}

const KerasModel::Layer *KerasGraph::foldable(const Layer &convolution) const
{
    const auto consumers = m_model.consumers(convolution.name);
    const bool isLinear = convolution.config[QLatin1String("activation")].toString(
                              QStringLiteral("linear")) == QLatin1String("linear");
    return isLinear && consumers.size() == 1 && consumers[0]->kind == QLatin1String("BatchNormalization")
               ? consumers[0]
               : nullptr;
}

Outcome<std::string> KerasGraph::convolution(const Layer &layer)
{
    const Weight *kernel = m_model.weight(layer.name + QStringLiteral("/kernel"));
    const Weight *bias = m_model.weight(layer.name + QStringLiteral("/bias"));
    if (!kernel || kernel->shape.size() != 4)
        return unsupported(layer, QStringLiteral("it has no kernel of four sizes"));
    const auto outputs = size_t(kernel->shape[3]);
    std::vector<float> factors = outputsFirst(*kernel);
    std::vector<float> offsets = bias ? bias->values : std::vector<float>(outputs, 0.0f);
    if (const Layer *normalization = foldable(layer)) {
        const auto scale = channelScale(m_model, *normalization);
        if (!scale || scale->factors.size() != outputs || offsets.size() != outputs)
            return unsupported(*normalization, QStringLiteral("its weights don't fit"));
        const size_t each = factors.size() / outputs;
        for (size_t index = 0; index < factors.size(); ++index)
            factors[index] *= scale->factors[index / each];
        for (size_t out = 0; out < outputs; ++out)
            offsets[out] = offsets[out] * scale->factors[out] + scale->offsets[out];
    }
    const auto &shape = kernel->shape;
    const std::string convolved = m_builder.node(
        "Conv",
        {inputOf(layer), m_builder.floats("kernel", {shape[3], shape[2], shape[0], shape[1]}, factors),
         m_builder.floats("bias", {shape[3]}, offsets)},
        {{"kernel_shape", std::vector<std::int64_t>{shape[0], shape[1]}},
         {"strides", integers(layer.config[QLatin1String("strides")])},
         {"dilations", integers(layer.config[QLatin1String("dilation_rate")])},
         padding(layer)});
    return activated(layer, convolved);
}

Outcome<std::string> KerasGraph::batchNormalization(const Layer &layer)
{
    // Already in the convolution's weights.
    const auto source = std::ranges::find(m_model.layers(), layer.inputs.constFirst(), &Layer::name);
    if (source->kind == QLatin1String("Conv2D") && foldable(*source) == &layer)
        return inputOf(layer);
    const auto scale = channelScale(m_model, layer);
    if (!scale)
        return unsupported(layer, QStringLiteral("its weights don't fit"));
    const Shape shape{1, std::int64_t(scale->factors.size()), 1, 1};
    const std::string scaled =
        m_builder.node("Mul", {inputOf(layer), m_builder.floats("scale", shape, scale->factors)});
    return m_builder.node("Add", {scaled, m_builder.floats("offset", shape, scale->offsets)});
}

Outcome<std::string> KerasGraph::maxPooling(const Layer &layer)
{
    return m_builder.node("MaxPool", {inputOf(layer)},
                          {{"kernel_shape", integers(layer.config[QLatin1String("pool_size")])},
                           {"strides", integers(layer.config[QLatin1String("strides")])},
                           padding(layer)});
}

Outcome<std::string> KerasGraph::dense(const Layer &layer)
{
    const Weight *kernel = m_model.weight(layer.name + QStringLiteral("/kernel"));
    const Weight *bias = m_model.weight(layer.name + QStringLiteral("/bias"));
    if (!kernel || kernel->shape.size() != 2)
        return unsupported(layer, QStringLiteral("it has no kernel of two sizes"));
    std::vector<std::string> inputs{inputOf(layer),
                                    m_builder.floats("kernel", kernel->shape, kernel->values)};
    if (bias)
        inputs.push_back(m_builder.floats("bias", bias->shape, bias->values));
    return activated(layer, m_builder.node("Gemm", inputs));
}

Outcome<std::string> KerasGraph::activated(const Layer &layer, const std::string &tensor)
{
    const QString activation = layer.config[QLatin1String("activation")].toString(QStringLiteral("linear"));
    if (activation == QLatin1String("linear"))
        return tensor;
    if (activation == QLatin1String("relu"))
        return m_builder.node("Relu", {tensor});
    // Keras means the channels, which are the second size here.
    if (activation == QLatin1String("softmax"))
        return m_builder.node("Softmax", {tensor}, {{"axis", 1}});
    return unsupported(layer, QStringLiteral("the activation \"%1\" isn't known").arg(activation));
}

} // namespace Qorvane::Encoders
