#include "encoders/graph/Adapters.h"
#include "encoders/graph/GraphFrame.h"
#include "semantic/Preprocessing.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Qorvane::Encoders {

namespace {

// What the application's tensor is normalised with, as its 32-bit constants are.
constexpr std::array<float, 3> ourMean{0.48145467f, 0.4578275f, 0.40821072f};
constexpr std::array<float, 3> ourDeviation{0.26862955f, 0.2613026f, 0.2757771f};

// Published constants are rounded at the eighth digit here and there; that is no other normalisation.
constexpr float roundingNoise = 1e-6f;

/// The colours of the application's tensor times `factor` plus `offset` are those that the graph wants.
struct Normalisation
{
    std::array<float, 3> factor;
    std::array<float, 3> offset;

    bool isNone() const
    {
        return std::ranges::all_of(factor, [](float f) { return std::abs(f - 1) < roundingNoise; }) &&
               std::ranges::all_of(offset, [](float o) { return std::abs(o) < roundingNoise; });
    }
};

Normalisation normalisationOf(const VisionForm &form)
{
    Normalisation result{};
    for (size_t channel = 0; channel < 3; ++channel) {
        result.factor[channel] = float(ourDeviation[channel] * form.scale / form.deviation[channel]);
        result.offset[channel] =
            float((ourMean[channel] * form.scale - form.mean[channel]) / form.deviation[channel]);
    }
    return result;
}

/// The picture the right way up and of the graph's own size.
std::string uprightAndSized(GraphBuilder &builder, const VisionForm &form, std::string picture)
{
    if (form.height == encoderSide && form.width == encoderSide) {
        std::vector<std::int64_t> rows(encoderSide);
        std::iota(rows.rbegin(), rows.rend(), 0);
        const auto order = builder.int64s("rows_from_the_last", {encoderSide}, rows);
        return builder.node("Gather", {picture, order}, {{"axis", 2}});
    }
    // Two products of matrices resample as exactly as one likes, also where the picture becomes smaller, and
    // exist in every operator set.
    const auto down = builder.floats("resampling_of_columns", {form.height, encoderSide},
                                     resamplingMatrix(encoderSide, form.height, form.filter, true));
    std::vector<float> across = resamplingMatrix(encoderSide, form.width, form.filter, false);
    std::vector<float> transposed(across.size());
    for (int row = 0; row < form.width; ++row) {
        for (int column = 0; column < encoderSide; ++column)
            transposed[size_t(column) * size_t(form.width) + size_t(row)] =
                across[size_t(row) * size_t(encoderSide) + size_t(column)];
    }
    const auto along = builder.floats("resampling_of_rows", {encoderSide, form.width}, transposed);
    picture = builder.node("MatMul", {picture, along});
    return builder.node("MatMul", {down, picture});
}

} // namespace

QStringList adaptVision(onnx::ModelProto &model, const VisionForm &form)
{
    QStringList said{QStringLiteral("rows mirrored back")};
    GraphFrame frame(model, {"pixel_values", "image_features"});
    GraphBuilder &builder = frame.builder();
    std::string picture =
        builder.input("pixel_values", onnx::TensorProto::FLOAT, {1, 3, encoderSide, encoderSide});
    picture = uprightAndSized(builder, form, picture);
    if (form.height != encoderSide || form.width != encoderSide)
        said.append(QStringLiteral("pictures brought to %1 x %2").arg(form.width).arg(form.height));
    if (const Normalisation normalisation = normalisationOf(form); !normalisation.isNone()) {
        const auto factor = builder.floats("colour_factor", {1, 3, 1, 1}, normalisation.factor);
        const auto offset = builder.floats("colour_offset", {1, 3, 1, 1}, normalisation.offset);
        picture = builder.node("Add", {builder.node("Mul", {picture, factor}), offset});
        said.append(QStringLiteral("colours normalised the model's own way"));
    }
    if (form.isBlueFirst) {
        const auto order = builder.int64s("blue_first", {3}, std::vector<std::int64_t>{2, 1, 0});
        picture = builder.node("Gather", {picture, order}, {{"axis", 1}});
        said.append(QStringLiteral("red and blue exchanged"));
    }
    if (form.isChannelsLast) {
        picture = builder.node("Transpose", {picture}, {{"perm", std::vector<std::int64_t>{0, 2, 3, 1}}});
        said.append(QStringLiteral("channels put last"));
    }
    if (form.inputType != onnx::TensorProto::FLOAT) {
        picture = builder.node("Cast", {picture}, {{"to", form.inputType}});
        said.append(QStringLiteral("the picture cast to 16-bit floats"));
    }
    frame.connect(picture, form.input);
    frame.begin();
    // A cast to the type that it has costs nothing, and gives the output its name.
    builder.node("Cast", {frame.nameOf(form.output)}, std::vector<std::string>{"image_features"},
                 {{"to", onnx::TensorProto::FLOAT}});
    builder.output("image_features", onnx::TensorProto::FLOAT, {1, form.dimension});
    if (form.outputType != onnx::TensorProto::FLOAT)
        said.append(QStringLiteral("the vector cast to 32-bit floats"));
    if (form.input != "pixel_values" || form.output != "image_features")
        said.append(QStringLiteral("\"%1\" and \"%2\" renamed")
                        .arg(QString::fromStdString(form.input), QString::fromStdString(form.output)));
    return said;
}

} // namespace Qorvane::Encoders
