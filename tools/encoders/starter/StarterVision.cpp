#include "encoders/starter/StarterVision.h"

#include "encoders/starter/KerasGraph.h"
#include "encoders/starter/LabelSpace.h"

#include <array>
#include <limits>

namespace Qorvane::Encoders {

namespace {

// The newest operators that Debian's oldest ONNX package knows.
constexpr int opset = 17;
constexpr std::int64_t side = 224;

// What the application normalises by (Radford et al., 2021), in the order red, green, blue.
constexpr std::array clipMean{0.48145466f, 0.4578275f, 0.40821073f};
constexpr std::array clipDeviation{0.26862954f, 0.26130258f, 0.27577711f};
// The mean of the classifier's training pictures, red, green, blue.
constexpr std::array classifierMean{123.68f, 116.779f, 103.939f};

// The classifier's scores are flattened before they become probabilities: it is far surer of its one answer
// than a picture of several things deserves.
constexpr float classifierTemperature = 2.5f;

// The classifier also judges parts of the picture, 3 x 3 windows of its last map. All of them together count
// as much as the whole.
constexpr std::int64_t windowSide = 3;
constexpr std::int64_t windowStep = 2;
constexpr float wholeShare = 0.5f;

// From the application's tensor to the classifier's.
std::string preparedPicture(GraphBuilder &builder, const std::string &pixels)
{
    // The application sends pictures upside down.
    const auto ones = [&](std::int64_t value) {
        return builder.int64s("index", {1}, std::array<std::int64_t, 1>{value});
    };
    const std::string upright = builder.node(
        "Slice", {pixels, ones(-1), ones(std::numeric_limits<std::int64_t>::min()), ones(2), ones(-1)});
    std::array<float, 3> factors{};
    std::array<float, 3> offsets{};
    for (size_t channel = 0; channel < 3; ++channel) {
        factors[channel] = 255 * clipDeviation[channel];
        offsets[channel] = 255 * clipMean[channel] - classifierMean[channel];
    }
    const std::string scaled =
        builder.node("Mul", {upright, builder.floats("factors", {1, 3, 1, 1}, factors)});
    const std::string moved = builder.node("Add", {scaled, builder.floats("offsets", {1, 3, 1, 1}, offsets)});
    const std::string order = builder.int64s("blue_first", {3}, std::array<std::int64_t, 3>{2, 1, 0});
    return builder.node("Gather", {moved, order}, {{"axis", 1}});
}

// `map` (1 x channels x height x width) as rows of channels: the whole, then the windows.
std::string regions(GraphBuilder &builder, const std::string &map, std::int64_t channels)
{
    const std::string whole = builder.node("Flatten", {builder.node("GlobalAveragePool", {map})});
    const std::string windows =
        builder.node("AveragePool", {map},
                     {{"kernel_shape", std::vector<std::int64_t>{windowSide, windowSide}},
                      {"strides", std::vector<std::int64_t>{windowStep, windowStep}}});
    const std::string columns = builder.node(
        "Reshape", {windows, builder.int64s("shape", {2}, std::array<std::int64_t, 2>{channels, -1})});
    return builder.node("Concat", {whole, builder.node("Transpose", {columns})}, {{"axis", 0}});
}

// The windows' and the whole's probabilities (regions x labels) as one row.
std::string meanProbabilities(GraphBuilder &builder, const std::string &each)
{
    const auto index = [&](std::int64_t value) {
        return builder.int64s("index", {1}, std::array<std::int64_t, 1>{value});
    };
    const std::string rows = index(0);
    const std::string whole = builder.node("Slice", {each, index(0), index(1), rows});
    const std::string windows =
        builder.node("Slice", {each, index(1), index(std::numeric_limits<std::int64_t>::max()), rows});
    const std::string mean = builder.node("ReduceMean", {windows}, {{"axes", std::vector<std::int64_t>{0}}});
    const std::string share = builder.floats("share", {}, std::array{wholeShare});
    const std::string rest = builder.floats("share", {}, std::array{1 - wholeShare});
    return builder.node("Add", {builder.node("Mul", {whole, share}), builder.node("Mul", {mean, rest})});
}

} // namespace

Outcome<onnx::ModelProto> starterVision(const KerasModel &classifier)
{
    const auto *pooling = classifier.firstOfKind(QStringLiteral("GlobalAveragePooling2D"));
    const auto *dense = classifier.firstOfKind(QStringLiteral("Dense"));
    const auto *kernel = dense ? classifier.weight(dense->name + QStringLiteral("/kernel")) : nullptr;
    const auto *bias = dense ? classifier.weight(dense->name + QStringLiteral("/bias")) : nullptr;
    if (!pooling || pooling->inputs.size() != 1 || !kernel || kernel->shape.size() != 2 || !bias)
        return problem(QStringLiteral("a classifier that ends in GlobalAveragePooling2D and Dense"),
                       QStringLiteral("another kind of network"),
                       QStringLiteral("use the pinned package, unchanged"));

    onnx::ModelProto model = GraphBuilder::emptyModel(opset, "starter_vision");
    GraphBuilder builder(*model.mutable_graph());
    const std::string pixels =
        builder.input("pixel_values", onnx::TensorProto_DataType_FLOAT, {1, 3, side, side});
    KerasGraph network(classifier, builder);
    const Outcome<std::string> map =
        network.append(preparedPicture(builder, pixels), pooling->inputs.constFirst());
    if (!map)
        return tl::unexpected(map.error());
    const std::string scores =
        builder.node("Gemm", {regions(builder, *map, kernel->shape[0]),
                              builder.floats("classes", kernel->shape, kernel->values),
                              builder.floats("class_bias", bias->shape, bias->values)});
    const std::string flattened =
        builder.node("Mul", {scores, builder.floats("sharpness", {}, std::array{1 / classifierTemperature})});
    const std::string each = builder.node("Softmax", {flattened}, {{"axis", 1}});
    const std::string vector = LabelSpace::appendPicture(builder, meanProbabilities(builder, each));
    builder.node("Identity", {vector}, std::vector<std::string>{"image_features"});
    builder.output("image_features", onnx::TensorProto_DataType_FLOAT, {1, kernel->shape[1] + 1});
    return model;
}

} // namespace Qorvane::Encoders
