#include "encoders/layout/LayoutRecognition.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_set>

namespace Qorvane::Encoders {

namespace {

using Type = onnx::TensorProto;

// Of several outputs the first of these; what stands behind isn't in the space that both towers share.
constexpr std::array<std::string_view, 11> visionOutputNames{
    "image_embeds",        "image_features",    "unnorm_image_features",
    "image_embeddings",    "image_embedding",   "image_embed",
    "embedding",           "embeddings",        "features",
    "norm_image_features", "sentence_embedding"};
constexpr std::array<std::string_view, 11> textOutputNames{
    "text_embeds",       "text_features", "unnorm_text_features", "text_embeddings", "text_embedding",
    "text_embed",        "embedding",     "embeddings",           "features",        "norm_text_features",
    "sentence_embedding"};

// Larger pictures and longer texts no encoder takes; their tensors would fill the memory.
constexpr std::int64_t greatestSide = 2048;
constexpr std::int64_t greatestContext = 4096;

bool isInteger(int type)
{
    return type == Type::INT32 || type == Type::INT64;
}

bool isFloat(int type)
{
    return type == Type::FLOAT || type == Type::FLOAT16;
}

bool isPicture(const ValueForm &form)
{
    return isFloat(form.type) && form.shape.size() == 4;
}

bool isTokens(const ValueForm &form)
{
    return isInteger(form.type) && form.shape.size() == 2;
}

bool contains(const std::string &name, std::string_view part)
{
    return name.find(part) != std::string::npos;
}

std::vector<ValueForm> formsOf(const google::protobuf::RepeatedPtrField<onnx::ValueInfoProto> &values)
{
    std::vector<ValueForm> forms;
    for (const auto &value : values) {
        ValueForm form{.name = value.name(), .type = 0, .shape = {}};
        if (value.type().has_tensor_type()) {
            form.type = value.type().tensor_type().elem_type();
            for (const auto &dimension : value.type().tensor_type().shape().dim())
                form.shape.push_back(
                    dimension.has_dim_value() && dimension.dim_value() > 0 ? dimension.dim_value() : -1);
        }
        forms.push_back(std::move(form));
    }
    return forms;
}

QString typeText(int type)
{
    const auto name = onnx::TensorProto_DataType_IsValid(type)
                          ? onnx::TensorProto_DataType_Name(onnx::TensorProto_DataType(type))
                          : "type " + std::to_string(type);
    return QString::fromStdString(name).toLower();
}

QString formsText(const std::vector<ValueForm> &forms)
{
    QStringList texts;
    for (const ValueForm &form : forms)
        texts.append(formText(form));
    return texts.isEmpty() ? QStringLiteral("none") : texts.join(QStringLiteral(", "));
}

Outcome<void> checkBatch(const ValueForm &form, const QString &fileName)
{
    if (form.shape[0] == 1 || form.shape[0] == -1)
        return {};
    return problem(QStringLiteral("%1 to take one picture or text at a time, or any number").arg(fileName),
                   QStringLiteral("a batch fixed at %1: %2").arg(form.shape[0]).arg(formText(form)),
                   QStringLiteral("export the model with an open batch size, or one of 1"));
}

/// Scores, and states of one tower that its projection hasn't brought into the space of both.
bool isBesideTheSpace(const std::string &name)
{
    return contains(name, "logits") || contains(name, "pooler") || contains(name, "hidden");
}

template <size_t count>
Outcome<ValueForm> vectorOutput(const std::vector<ValueForm> &outputs, const QString &fileName,
                                const std::array<std::string_view, count> &names, const QString &what)
{
    const QString expected =
        QStringLiteral("one output with the vector of a %1 (rank 2) in %2").arg(what, fileName);
    const QString remedy =
        QStringLiteral("use an export with its projection: the one that gives embeddings, not hidden states");
    for (const std::string_view name : names) {
        const auto found = std::ranges::find(outputs, name, &ValueForm::name);
        if (found == outputs.end())
            continue;
        if (found->shape.size() != 2)
            return problem(expected, formText(*found), remedy);
        if (auto batch = checkBatch(*found, fileName); !batch)
            return tl::unexpected(batch.error());
        return *found;
    }
    std::vector<ValueForm> candidates;
    for (const ValueForm &output : outputs) {
        if (output.shape.size() == 2 && !isBesideTheSpace(output.name))
            candidates.push_back(output);
    }
    if (candidates.size() == 1) {
        if (auto batch = checkBatch(candidates.front(), fileName); !batch)
            return tl::unexpected(batch.error());
        return candidates.front();
    }
    return problem(expected, QStringLiteral("the outputs ") + formsText(outputs), remedy);
}

/// What names of inputs say that they hold, when several have the form of tokens.
ValueForm *place(const std::string &name, ValueForm &ids, ValueForm &mask, ValueForm &types,
                 ValueForm &positions)
{
    if (contains(name, "mask"))
        return &mask;
    if (contains(name, "token_type") || contains(name, "segment"))
        return &types;
    if (contains(name, "position"))
        return &positions;
    return &ids;
}

} // namespace

QString formText(const ValueForm &form)
{
    QStringList sizes;
    for (const std::int64_t size : form.shape)
        sizes.append(size < 0 ? QStringLiteral("?") : QString::number(size));
    return QStringLiteral("%1 (%2, %3)")
        .arg(QString::fromStdString(form.name), typeText(form.type),
             sizes.isEmpty() ? QStringLiteral("shape not told") : sizes.join(QStringLiteral(" x ")));
}

std::vector<ValueForm> declaredInputs(const onnx::GraphProto &graph)
{
    std::unordered_set<std::string> constants;
    for (const auto &tensor : graph.initializer())
        constants.insert(tensor.name());
    std::vector<ValueForm> inputs = formsOf(graph.input());
    std::erase_if(inputs, [&constants](const ValueForm &form) { return constants.contains(form.name); });
    return inputs;
}

std::vector<ValueForm> declaredOutputs(const onnx::GraphProto &graph)
{
    return formsOf(graph.output());
}

GraphKind kindOf(const onnx::GraphProto &graph)
{
    const std::vector<ValueForm> inputs = declaredInputs(graph);
    const bool hasPicture = std::ranges::any_of(inputs, isPicture);
    const bool hasTokens = std::ranges::any_of(inputs, isTokens);
    return hasPicture && hasTokens ? GraphKind::joint
           : hasPicture            ? GraphKind::vision
           : hasTokens             ? GraphKind::text
                                   : GraphKind::other;
}

Outcome<ValueForm> visionOutput(const std::vector<ValueForm> &outputs, const QString &fileName)
{
    return vectorOutput(outputs, fileName, visionOutputNames, QStringLiteral("picture"));
}

Outcome<ValueForm> textOutput(const std::vector<ValueForm> &outputs, const QString &fileName)
{
    return vectorOutput(outputs, fileName, textOutputNames, QStringLiteral("text"));
}

Outcome<VisionForm> recogniseVision(const onnx::GraphProto &graph, const ValueForm &output, int openHeight,
                                    int openWidth, const QString &fileName)
{
    const std::vector<ValueForm> inputs = declaredInputs(graph);
    const QString expected =
        QStringLiteral("one picture of three colours as the only input of %1").arg(fileName);
    const auto refused = [&](const QString &remedy) {
        return problem(expected, QStringLiteral("the inputs ") + formsText(inputs), remedy);
    };
    const QString another =
        QStringLiteral("use another export of the model, one that takes the picture alone");
    if (inputs.size() != 1 || !isPicture(inputs.front()))
        return refused(another);
    const ValueForm &picture = inputs.front();
    if (auto batch = checkBatch(picture, fileName); !batch)
        return tl::unexpected(batch.error());

    VisionForm form;
    form.isChannelsLast = picture.shape[1] != 3 && picture.shape[3] == 3;
    const auto &shape = picture.shape;
    const std::int64_t channels = form.isChannelsLast ? shape[3] : shape[1];
    const std::int64_t height = form.isChannelsLast ? shape[1] : shape[2];
    const std::int64_t width = form.isChannelsLast ? shape[2] : shape[3];
    if ((channels != 3 && channels != -1) || height > greatestSide || width > greatestSide)
        return refused(another);
    form.input = picture.name;
    form.inputType = picture.type;
    form.height = height == -1 ? openHeight : int(height);
    form.width = width == -1 ? openWidth : int(width);
    form.output = output.name;
    form.outputType = output.type;
    form.dimension = int(output.shape[1]);
    return form;
}

Outcome<TextForm> recogniseText(const onnx::GraphProto &graph, const ValueForm &output, int openContext,
                                const QString &fileName)
{
    const std::vector<ValueForm> inputs = declaredInputs(graph);
    ValueForm ids;
    ValueForm mask;
    ValueForm types;
    ValueForm positions;
    for (const ValueForm &input : inputs) {
        ValueForm *target = place(input.name, ids, mask, types, positions);
        // A mask is also told in floats or as yes and no.
        const bool isFitting =
            input.shape.size() == 2 &&
            (isInteger(input.type) || (target == &mask && (isFloat(input.type) || input.type == Type::BOOL)));
        if (!isFitting || !target->name.empty())
            return problem(
                QStringLiteral("tokens, and at most a mask, token types and positions, as inputs of %1")
                    .arg(fileName),
                QStringLiteral("the inputs ") + formsText(inputs),
                QStringLiteral("use another export of the model, one that takes token ids"));
        *target = input;
    }
    if (ids.name.empty())
        return problem(QStringLiteral("tokens as an input of %1").arg(fileName),
                       QStringLiteral("the inputs ") + formsText(inputs),
                       QStringLiteral("use another export of the model, one that takes token ids"));
    std::int64_t context = -1;
    for (const ValueForm *form : {&ids, &mask, &types, &positions}) {
        if (form->name.empty())
            continue;
        if (auto batch = checkBatch(*form, fileName); !batch)
            return tl::unexpected(batch.error());
        context = std::max(context, form->shape[1]);
    }
    // Start, end and one word.
    constexpr std::int64_t smallestContext = 3;
    if (context != -1 && (context < smallestContext || context > greatestContext))
        return problem(QStringLiteral("texts of %1 to %2 tokens in %3")
                           .arg(smallestContext)
                           .arg(greatestContext)
                           .arg(fileName),
                       formText(ids), QStringLiteral("use another export of the model"));

    TextForm form;
    form.ids = ids.name;
    form.idsType = ids.type;
    form.mask = mask.name;
    form.maskType = mask.type;
    form.tokenTypes = types.name;
    form.tokenTypesType = types.type;
    form.positions = positions.name;
    form.positionsType = positions.type;
    form.output = output.name;
    form.outputType = output.type;
    form.context = context == -1 ? openContext : int(context);
    form.dimension = int(output.shape[1]);
    return form;
}

} // namespace Qorvane::Encoders
