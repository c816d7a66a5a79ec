#include "encoders/starter/LabelSpace.h"

#include <array>
#include <cmath>

namespace Qorvane::Encoders::LabelSpace {

namespace {

// How sharply a text is put to its labels: the softmax temperature over cosines. Between 0.08 and 0.15 the
// order of the matches hardly changes; below, only the nearest label counts, above, all do.
constexpr float textTemperature = 0.12f;

// The nearest label's cosine at which a text means nothing that the labels know, and at which it surely does.
// Unrelated words reach 0.2 to 0.25, sentences about pictures begin at 0.3. Texts in between get a shorter
// vector, so that fewer pictures reach the application's cut.
constexpr float strangeCosine = 0.2f;
constexpr float familiarCosine = 0.35f;

// Brings the similarities to the application's cut: what lies above 0.17 here is more often right than wrong,
// and the cut is at 0.15.
constexpr float scale = 0.9f;

std::string unitLength(GraphBuilder &builder, const std::string &tensor)
{
    return builder.node("LpNormalization", {tensor}, {{"axis", 1}, {"p", 2}});
}

std::string number(GraphBuilder &builder, float value)
{
    return builder.floats("number", {}, std::array{value});
}

std::vector<float> unitLength(std::vector<float> vector)
{
    double sum = 0;
    for (const float value : vector)
        sum += double(value) * value;
    const double factor = sum > 0 ? 1 / std::sqrt(sum) : 0;
    for (float &value : vector)
        value = float(value * factor);
    return vector;
}

/// The labels as the text's side needs them: around their own mean, which all texts have in common.
struct CentredLabels
{
    std::vector<float> mean;
    std::vector<float> columns; ///< width x labels
};

CentredLabels centred(const Rows &labels)
{
    const std::size_t width = labels.width;
    const std::size_t count = labels.count();
    std::vector<std::vector<float>> rows;
    std::vector<double> sums(width, 0.0);
    for (std::size_t label = 0; label < count; ++label) {
        const auto begin = labels.values.begin() + std::ptrdiff_t(label * width);
        rows.push_back(unitLength(std::vector<float>(begin, begin + std::ptrdiff_t(width))));
        for (std::size_t axis = 0; axis < width; ++axis)
            sums[axis] += rows.back()[axis];
    }
    CentredLabels result{.mean = std::vector<float>(width), .columns = std::vector<float>(width * count)};
    for (std::size_t axis = 0; axis < width; ++axis)
        result.mean[axis] = float(sums[axis] / double(count));
    for (std::size_t label = 0; label < count; ++label) {
        for (std::size_t axis = 0; axis < width; ++axis)
            rows[label][axis] -= result.mean[axis];
        rows[label] = unitLength(std::move(rows[label]));
        for (std::size_t axis = 0; axis < width; ++axis)
            result.columns[axis * count + label] = rows[label][axis];
    }
    return result;
}

// The text's cosine with each label.
std::string cosines(GraphBuilder &builder, const std::string &sentence, const Rows &labels)
{
    const CentredLabels known = centred(labels);
    const auto width = std::int64_t(labels.width);
    const std::string mean = builder.floats("label_mean", {1, width}, known.mean);
    const std::string direction =
        unitLength(builder, builder.node("Sub", {unitLength(builder, sentence), mean}));
    return builder.node("MatMul", {direction, builder.floats("labels", {width, std::int64_t(labels.count())},
                                                             known.columns)});
}

// From 0, a text that means nothing here, to `scale`. As 1 x 1.
std::string familiarity(GraphBuilder &builder, const std::string &cosines, std::int64_t labelCount)
{
    // Pooling finds the greatest with the same words in every operator set; reducing doesn't.
    const std::string line = builder.node(
        "Reshape", {cosines, builder.int64s("shape", {3}, std::array<std::int64_t, 3>{1, 1, labelCount})});
    const std::string nearest =
        builder.node("Reshape", {builder.node("GlobalMaxPool", {line}),
                                 builder.int64s("shape", {2}, std::array<std::int64_t, 2>{1, 1})});
    const std::string above = builder.node("Sub", {nearest, number(builder, strangeCosine)});
    const std::string share =
        builder.node("Mul", {above, number(builder, 1 / (familiarCosine - strangeCosine))});
    const std::string clipped = builder.node("Clip", {share, number(builder, 0), number(builder, 1)});
    return builder.node("Mul", {clipped, number(builder, scale)});
}

} // namespace

std::string appendPicture(GraphBuilder &builder, const std::string &probabilities)
{
    // The root makes the second and third guess count, as they do in pictures of more than one thing. Around
    // their mean, undecided pictures get no coordinate that fits every text.
    const std::string roots = builder.node("Sqrt", {probabilities});
    const std::string mean = builder.node("ReduceMean", {roots}, {{"axes", std::vector<std::int64_t>{1}}});
    const std::string direction = unitLength(builder, builder.node("Sub", {roots, mean}));
    return builder.node("Concat", {direction, builder.floats("nothing", {1, 1}, std::array{0.0f})},
                        {{"axis", 1}});
}

std::string appendText(GraphBuilder &builder, const std::string &sentence, const Rows &labels)
{
    const auto labelCount = std::int64_t(labels.count());
    const std::string near = cosines(builder, sentence, labels);
    const std::string sharpened = builder.node(
        "Softmax", {builder.node("Mul", {near, number(builder, 1 / textTemperature)})}, {{"axis", 1}});
    const std::string direction =
        unitLength(builder, builder.node("Sub", {sharpened, number(builder, 1 / float(labelCount))}));
    const std::string share = familiarity(builder, near, labelCount);
    // The application makes every vector as long as one. What a strange text lacks goes into the coordinate
    // that no picture has.
    const std::string square = builder.node("Mul", {share, share});
    const std::string rest = builder.node("Sqrt", {builder.node("Sub", {number(builder, 1), square})});
    return builder.node("Concat", {builder.node("Mul", {direction, share}), rest}, {{"axis", 1}});
}

std::vector<float> mixed(const std::vector<float> &name, const std::vector<float> &phrase, float phraseShare)
{
    const std::vector<float> names = unitLength(name);
    const std::vector<float> phrases = unitLength(phrase);
    std::vector<float> mix(names.size());
    for (std::size_t axis = 0; axis < mix.size(); ++axis)
        mix[axis] = (1 - phraseShare) * names[axis] + phraseShare * phrases[axis];
    return unitLength(std::move(mix));
}

} // namespace Qorvane::Encoders::LabelSpace
