#include "tools/encoders/import/SyntheticModels.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFloat16>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <random>

namespace Qorvane::Encoders::Synthetic {

namespace {

using Type = onnx::TensorProto;

constexpr int opset = 17;
constexpr int patch = 16;
constexpr int channels = 8;
constexpr int width = 8;
// Longer than any context here.
constexpr int positionCount = 160;

std::vector<float> random(size_t count, double size, unsigned seed)
{
    std::mt19937 generator(seed);
    std::vector<float> values(count);
    for (float &value : values)
        value = float((double(generator()) / double(generator.max()) * 2 - 1) * size);
    return values;
}

/// What a tower is built with: constants and products in its precision.
class Tower
{
public:
    Tower(GraphBuilder &builder, onnx::GraphProto &graph, Precision precision, std::string prefix)
        : m_builder(builder)
        , m_graph(graph)
        , m_precision(precision)
        , m_prefix(std::move(prefix))
    {
    }

    int type() const { return m_precision == Precision::fp16 ? Type::FLOAT16 : Type::FLOAT; }

    std::string constant(const std::string &name, const Shape &shape, const std::vector<float> &values)
    {
        if (type() == Type::FLOAT)
            return m_builder.floats(m_prefix + name, shape, values);
        std::vector<qfloat16> halves(values.begin(), values.end());
        auto &tensor = *m_graph.add_initializer();
        tensor.set_name(m_builder.freshName(m_prefix + name));
        tensor.set_data_type(Type::FLOAT16);
        tensor.mutable_dims()->Add(shape.begin(), shape.end());
        tensor.set_raw_data(halves.data(), halves.size() * sizeof(qfloat16));
        return tensor.name();
    }

    std::string cast(const std::string &value, int to)
    {
        return m_builder.node("Cast", {value}, {{"to", to}});
    }

    /// Products with weights of eight bits, quantised as the usual tools do.
    std::string matMul(const std::string &value, const std::string &name, const Shape &shape,
                       const std::vector<float> &weights)
    {
        if (m_precision != Precision::int8)
            return m_builder.node("MatMul", {value, constant(name, shape, weights)});
        return integerProduct("MatMulInteger", value, name, shape, weights, {});
    }

    std::string conv(const std::string &value, const std::string &name, const Shape &shape,
                     const std::vector<float> &weights)
    {
        const std::vector<std::int64_t> strides{patch, patch};
        if (m_precision != Precision::int8)
            return m_builder.node("Conv", {value, constant(name, shape, weights)}, {{"strides", strides}});
        return integerProduct("ConvInteger", value, name, shape, weights, strides);
    }

    /// Rows of a table, of eight bits in the quantised form.
    std::string gather(const std::string &name, const Shape &shape, const std::vector<float> &table,
                       const std::string &indices)
    {
        if (m_precision != Precision::int8)
            return m_builder.node("Gather", {constant(name, shape, table), indices});
        const auto [weights, scale] = quantised(name, shape, table);
        return m_builder.node("DequantizeLinear", {m_builder.node("Gather", {weights, indices}), scale});
    }

private:
    std::pair<std::string, std::string> quantised(const std::string &name, const Shape &shape,
                                                  const std::vector<float> &values)
    {
        float greatest = 0;
        for (const float value : values)
            greatest = std::max(greatest, std::abs(value));
        const float scale = greatest / 127;
        std::vector<std::int8_t> bytes;
        for (const float value : values)
            bytes.push_back(std::int8_t(std::lround(value / scale)));
        return {m_builder.signedBytes(m_prefix + name + "_quantized", shape, bytes),
                m_builder.floats(m_prefix + name + "_scale", {}, std::vector<float>{scale})};
    }

    std::string integerProduct(const std::string &operation, const std::string &value,
                               const std::string &name, const Shape &shape, const std::vector<float> &weights,
                               const std::vector<std::int64_t> &strides)
    {
        const auto [bytes, scale] = quantised(name, shape, weights);
        const std::string own = m_prefix + name;
        const std::vector<std::string> input{own + "_input", own + "_input_scale", own + "_input_zero"};
        m_builder.node("DynamicQuantizeLinear", {value}, input);
        auto &product = m_builder.node(operation, {input[0], bytes, input[2]},
                                       std::vector<std::string>{own + "_product"});
        if (!strides.empty()) {
            auto &attribute = *product.add_attribute();
            attribute.set_name("strides");
            attribute.set_type(onnx::AttributeProto::INTS);
            attribute.mutable_ints()->Add(strides.begin(), strides.end());
        }
        return m_builder.node(
            "Mul", {cast(own + "_product", Type::FLOAT), m_builder.node("Mul", {input[1], scale})});
    }

    GraphBuilder &m_builder;
    onnx::GraphProto &m_graph;
    Precision m_precision;
    std::string m_prefix;
};

std::string normalisedIf(GraphBuilder &builder, bool isNormalised, const std::string &vector)
{
    return isNormalised ? builder.node("LpNormalization", {vector}, {{"axis", 1}, {"p", 2}}) : vector;
}

} // namespace

void addVision(GraphBuilder &builder, onnx::GraphProto &graph, const VisionSpec &spec)
{
    Tower tower(builder, graph, spec.precision, "visual.");
    const int tensorType = spec.has16BitTensors ? Type::FLOAT16 : Type::FLOAT;
    const int side = spec.isSideOpen ? -1 : spec.side;
    builder.input(spec.input, tensorType,
                  spec.isChannelsLast ? Shape{spec.batch, side, side, 3} : Shape{spec.batch, 3, side, side});
    std::string value = spec.input;
    if (spec.isChannelsLast)
        value = builder.node("Transpose", {value}, {{"perm", std::vector<std::int64_t>{0, 3, 1, 2}}});
    if (tensorType != tower.type())
        value = tower.cast(value, tower.type());

    const int patches = spec.side / patch;
    value = tower.conv(value, "conv1.weight", {channels, 3, patch, patch},
                       random(size_t(channels) * 3 * patch * patch, 0.1, 1));
    value = builder.node("Tanh", {value});
    // The place of each patch counts.
    value = builder.node("Mul",
                         {value, tower.constant("positions", {1, channels, patches, patches},
                                                random(size_t(channels) * size_t(patches * patches), 1, 2))});
    value = builder.node("ReduceMean", {value}, {{"axes", std::vector<std::int64_t>{2, 3}}, {"keepdims", 0}});
    value = tower.matMul(value, "proj", {channels, spec.dimension},
                         random(size_t(channels) * size_t(spec.dimension), 1, 3));
    if (tensorType != tower.type())
        value = tower.cast(value, tensorType);
    value = normalisedIf(builder, spec.isNormalised, value);
    builder.node("Identity", {value}, std::vector<std::string>{spec.output});
    builder.output(spec.output, tensorType, {spec.batch, spec.dimension});
}

void addText(GraphBuilder &builder, onnx::GraphProto &graph, const TextSpec &spec)
{
    Tower tower(builder, graph, spec.precision, "transformer.");
    const Shape shape{spec.batch, spec.isContextOpen ? -1 : spec.context};
    builder.input(spec.ids, spec.type, shape);
    const auto numbers = [&builder](const std::string &name, std::vector<std::int64_t> values) {
        return builder.int64s(name, {std::int64_t(values.size())}, values);
    };
    // The length, told by the shape of the tokens.
    const auto length =
        builder.node("Gather", {builder.node("Shape", {spec.ids}), numbers("one_index", {1})});
    const auto firstOnes = [&](const std::string &table, std::vector<std::int64_t> axes) {
        std::string end = length;
        if (axes.size() == 2)
            end = builder.node("Concat", {length, length}, {{"axis", 0}});
        std::vector<std::int64_t> zeros(axes.size(), 0);
        return builder.node("Slice", {table, numbers("starts", zeros), end, numbers("axes", axes)});
    };

    std::string value = tower.gather("token_embedding", {spec.vocabularySize, width},
                                     random(size_t(spec.vocabularySize) * width, 1, 4), spec.ids);
    const std::vector<float> places = random(size_t(positionCount) * width, 1, 5);
    if (!spec.positions.empty()) {
        builder.input(spec.positions, spec.type, shape);
        value = builder.node(
            "Add",
            {value, builder.node("Gather", {tower.constant("positional", {positionCount, width}, places),
                                            spec.positions})});
    } else {
        value = builder.node(
            "Add", {value, firstOnes(tower.constant("positional", {positionCount, width}, places), {0})});
    }
    if (!spec.tokenTypes.empty()) {
        builder.input(spec.tokenTypes, spec.type, shape);
        value = builder.node(
            "Add", {value, tower.gather("types", {2, width}, random(2 * width, 1, 6), spec.tokenTypes)});
    }
    value = builder.node("Tanh", {value});
    std::string mask;
    if (!spec.mask.empty()) {
        builder.input(spec.mask, spec.type, shape);
        mask = builder.node("Unsqueeze", {tower.cast(spec.mask, tower.type()), numbers("last_axis", {2})});
        value = builder.node("Mul", {value, mask});
    }
    if (spec.isMaskedMean) {
        const auto sum = builder.node("ReduceSum", {value, numbers("sequence", {1})}, {{"keepdims", 0}});
        value = builder.node(
            "Div", {sum, builder.node("ReduceSum", {mask, numbers("sequence", {1})}, {{"keepdims", 0}})});
    } else if (spec.isFirstOfNonZero) {
        const auto isPadding = builder.node("Equal", {spec.ids, tower.cast(numbers("zero", {0}), spec.type)});
        const auto seen =
            builder.node("Unsqueeze", {tower.cast(builder.node("Not", {isPadding}), tower.type()),
                                       numbers("last_axis", {2})});
        // Each place knows of all others, with more weight for the nearer.
        std::vector<float> others(size_t(positionCount) * positionCount);
        for (int row = 0; row < positionCount; ++row) {
            for (int column = 0; column < positionCount; ++column)
                others[size_t(row * positionCount + column)] = std::pow(0.97f, float(std::abs(row - column)));
        }
        const auto square =
            firstOnes(tower.constant("attention", {positionCount, positionCount}, others), {0, 1});
        value = builder.node("MatMul", {square, builder.node("Mul", {value, seen})});
        value = builder.node("Gather", {value, builder.int64s("first", {}, std::vector<std::int64_t>{0})},
                             {{"axis", 1}});
    } else {
        // Each place knows of those before it, with more weight for the nearer.
        std::vector<float> earlier(size_t(positionCount) * positionCount, 0);
        for (int row = 0; row < positionCount; ++row) {
            for (int column = 0; column <= row; ++column)
                earlier[size_t(row * positionCount + column)] = std::pow(0.9f, float(row - column));
        }
        const auto triangle =
            firstOnes(tower.constant("attention", {positionCount, positionCount}, earlier), {0, 1});
        value = builder.node("MatMul", {triangle, value});
        const auto end =
            builder.node("ArgMax", {tower.cast(spec.ids, Type::INT32)}, {{"axis", 1}, {"keepdims", 1}});
        std::vector<std::int64_t> order(positionCount);
        std::iota(order.begin(), order.end(), 0);
        const auto isEnd = builder.node("Equal", {end, firstOnes(numbers("order", order), {0})});
        const auto choice =
            builder.node("Unsqueeze", {tower.cast(isEnd, tower.type()), numbers("last_axis", {2})});
        value = builder.node("ReduceSum", {builder.node("Mul", {value, choice}), numbers("sequence", {1})},
                             {{"keepdims", 0}});
    }
    value = tower.matMul(value, "text_projection", {width, spec.dimension},
                         random(size_t(width) * size_t(spec.dimension), 1, 7));
    value = normalisedIf(builder, spec.isNormalised, value);
    builder.node("Identity", {value}, std::vector<std::string>{spec.output});
    builder.output(spec.output, tower.type(), {spec.batch, spec.dimension});
}

onnx::ModelProto visionModel(const VisionSpec &spec)
{
    onnx::ModelProto model = GraphBuilder::emptyModel(opset, "vision");
    GraphBuilder builder(*model.mutable_graph());
    addVision(builder, *model.mutable_graph(), spec);
    return model;
}

onnx::ModelProto textModel(const TextSpec &spec)
{
    onnx::ModelProto model = GraphBuilder::emptyModel(opset, "text");
    GraphBuilder builder(*model.mutable_graph());
    addText(builder, *model.mutable_graph(), spec);
    return model;
}

onnx::ModelProto jointModel(const VisionSpec &vision, const TextSpec &text)
{
    onnx::ModelProto model = GraphBuilder::emptyModel(opset, "joint");
    onnx::GraphProto &graph = *model.mutable_graph();
    GraphBuilder builder(graph);
    VisionSpec rawVision = vision;
    rawVision.output = "image_raw";
    TextSpec rawText = text;
    rawText.output = "text_raw";
    addText(builder, graph, rawText);
    addVision(builder, graph, rawVision);

    const auto own = builder.floats("shared", {1, vision.dimension}, random(size_t(vision.dimension), 1, 8));
    const auto shared = builder.node("Expand", {own, builder.node("Shape", {own})});
    const std::array<std::string, 2> outputs{text.output, vision.output};
    for (int index = 0; index < 2; ++index) {
        auto &output = *graph.mutable_output(index);
        const auto scale =
            builder.node("Cast", {shared}, {{"to", int(output.type().tensor_type().elem_type())}});
        builder.node("Mul", {output.name(), scale}, std::vector<std::string>{outputs[size_t(index)]});
        output.set_name(outputs[size_t(index)]);
    }

    std::string picture = vision.output;
    std::string sentence = text.output;
    if (vision.precision == Precision::fp16) {
        picture = builder.node("Cast", {picture}, {{"to", Type::FLOAT}});
        sentence = builder.node("Cast", {sentence}, {{"to", Type::FLOAT}});
    }
    const auto logits = builder.node("MatMul", {sentence, builder.node("Transpose", {picture})});
    builder.node("Identity", {logits}, std::vector<std::string>{"logits_per_text"});
    builder.node("Transpose", {logits}, std::vector<std::string>{"logits_per_image"});
    builder.output("logits_per_text", Type::FLOAT, {-1, -1});
    builder.output("logits_per_image", Type::FLOAT, {-1, -1});
    return model;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s can't be written", qPrintable(path));
}

void writeModel(const QString &path, const onnx::ModelProto &model)
{
    writeFile(path, QByteArray::fromStdString(model.SerializeAsString()));
}

void writeModelWithWeightsBeside(const QString &path, onnx::ModelProto model, const QString &location)
{
    QByteArray weights;
    for (auto &tensor : *model.mutable_graph()->mutable_initializer()) {
        // What shapes are computed from must stay, for the runtime to see it in time.
        if (tensor.data_type() != Type::FLOAT)
            continue;
        const std::string bytes = tensor.raw_data();
        const auto add = [&tensor](const char *key, const std::string &value) {
            auto *entry = tensor.add_external_data();
            entry->set_key(key);
            entry->set_value(value);
        };
        add("location", location.toStdString());
        add("offset", std::to_string(weights.size()));
        add("length", std::to_string(bytes.size()));
        tensor.set_data_location(Type::EXTERNAL);
        tensor.clear_raw_data();
        weights.append(QByteArray::fromStdString(bytes));
    }
    writeModel(path, model);
    writeFile(QFileInfo(path).absolutePath() + u'/' + location, weights);
}

QByteArray openaiVocabulary()
{
    QVariantMap entries;
    int id = 0;
    for (char letter = 'a'; letter <= 'z'; ++letter) {
        entries.insert(QString(QLatin1Char(letter)), id++);
        entries.insert(QLatin1Char(letter) + QStringLiteral("</w>"), id++);
    }
    id = 320;
    for (const char *word : {"a", "the", "dog", "cat", "red", "boat", "sea", "over", "sunset", "green",
                             "field", "under", "blue", "sky", "black", "and", "white", "chessboard", "heart"})
        entries.insert(QLatin1StringView(word) + QStringLiteral("</w>"), id++);
    entries.insert(QStringLiteral("<|startoftext|>"), 49406);
    entries.insert(QStringLiteral("<|endoftext|>"), 49407);
    return QJsonDocument(QJsonObject::fromVariantMap(entries)).toJson();
}

QByteArray chineseVocabularyLines()
{
    QStringList lines{QStringLiteral("[PAD]")};
    for (int number = 1; number < 100; ++number)
        lines.append(QStringLiteral("[unused%1]").arg(number));
    lines +=
        {QStringLiteral("[UNK]"), QStringLiteral("[CLS]"), QStringLiteral("[SEP]"), QStringLiteral("[MASK]")};
    for (const QChar character : QStringLiteral("海上的日落蓝天下绿色田野黑白棋盘一颗红心狗猫人船水山花"))
        lines.append(character);
    return lines.join(u'\n').toUtf8() + '\n';
}

} // namespace Qorvane::Encoders::Synthetic
