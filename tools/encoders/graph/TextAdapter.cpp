#include "encoders/graph/Adapters.h"
#include "encoders/graph/GraphFrame.h"

#include <algorithm>
#include <numeric>

namespace Qorvane::Encoders {

namespace {

// Tokens that the application sends.
constexpr int ourContext = 77;

/// The first `length` columns.
std::string cut(GraphBuilder &builder, const std::string &values, int length)
{
    if (length >= ourContext)
        return values;
    std::vector<std::int64_t> kept(static_cast<size_t>(length));
    std::iota(kept.begin(), kept.end(), 0);
    return builder.node("Gather", {values, builder.int64s("kept_tokens", {length}, kept)}, {{"axis", 1}});
}

/// All columns and behind them as many of `filler` as make `length`.
std::string padded(GraphBuilder &builder, const std::string &values, int length, int filler)
{
    const int missing = length - ourContext;
    if (missing <= 0)
        return values;
    const auto more = builder.int32s("more_padding", {1, missing},
                                     std::vector<std::int32_t>(static_cast<size_t>(missing), filler));
    return builder.node("Concat", {values, more}, {{"axis", 1}});
}

/// `values` where `choice`, of zeros and ones, is 0, and `other`, one number, where it is 1.
std::string chosen(GraphBuilder &builder, const std::string &values, const std::string &choice, int other)
{
    const auto one = builder.int32s("one", {1}, std::vector<std::int32_t>{1});
    const auto number = builder.int32s("number", {1}, std::vector<std::int32_t>{other});
    const auto kept = builder.node("Mul", {values, builder.node("Sub", {one, choice})});
    return builder.node("Add", {kept, builder.node("Mul", {choice, number})});
}

/// The ids with the end token in the last place when a text fills it, since a cut took it away: in the
/// application, or here. Without one many models give nonsense.
std::string withEndToken(GraphBuilder &builder, const std::string &ids, const std::string &mask,
                         const TextForm &form)
{
    const int length = std::min(form.context, ourContext);
    std::vector<std::int32_t> onlyLast(static_cast<size_t>(length), 0);
    onlyLast.back() = 1;
    const auto last = builder.int32s("last_place", {1, length}, onlyLast);
    return chosen(builder, ids, builder.node("Mul", {mask, last}), form.endToken);
}

/// Names a constant tensor of the graph's own type as the published input.
void feed(GraphFrame &frame, const std::string &input, int type, const std::vector<std::int32_t> &values)
{
    GraphBuilder &builder = frame.builder();
    const auto constant =
        builder.int32s("fed_" + input, {1, static_cast<std::int64_t>(values.size())}, values);
    frame.connect(builder.node("Cast", {constant}, {{"to", type}}), input);
}

} // namespace

QStringList adaptText(onnx::ModelProto &model, const TextForm &form)
{
    QStringList said;
    GraphFrame frame(model, {"input_ids", "attention_mask", "text_features"});
    GraphBuilder &builder = frame.builder();
    std::string ids = builder.input("input_ids", onnx::TensorProto::INT32, {1, ourContext});
    std::string mask = builder.input("attention_mask", onnx::TensorProto::INT32, {1, ourContext});

    mask = cut(builder, mask, form.context);
    ids = withEndToken(builder, cut(builder, ids, form.context), mask, form);
    ids = padded(builder, ids, form.context, form.padToken);
    mask = padded(builder, mask, form.context, 0);
    if (form.context < ourContext)
        said.append(QStringLiteral("texts cut to %1 tokens, the end token kept").arg(form.context));
    if (form.context > ourContext)
        said.append(QStringLiteral("texts padded to %1 tokens").arg(form.context));
    if (form.padToken != 0) {
        const auto one = builder.int32s("one", {1}, std::vector<std::int32_t>{1});
        ids = chosen(builder, ids, builder.node("Sub", {one, mask}), form.padToken);
        said.append(QStringLiteral("padding put in as token %1").arg(form.padToken));
    }

    frame.connect(builder.node("Cast", {ids}, {{"to", form.idsType}}), form.ids);
    if (form.idsType == onnx::TensorProto::INT64)
        said.append(QStringLiteral("tokens cast to 64 bits"));
    if (!form.mask.empty())
        frame.connect(builder.node("Cast", {mask}, {{"to", form.maskType}}), form.mask);
    else
        said.append(QStringLiteral("the mask dropped, which the model doesn't take"));
    const auto length = static_cast<size_t>(form.context);
    if (!form.tokenTypes.empty()) {
        feed(frame, form.tokenTypes, form.tokenTypesType, std::vector<std::int32_t>(length, 0));
        said.append(QStringLiteral("token types given as zeros"));
    }
    if (!form.positions.empty()) {
        std::vector<std::int32_t> positions(length);
        std::iota(positions.begin(), positions.end(), 0);
        feed(frame, form.positions, form.positionsType, positions);
        said.append(QStringLiteral("positions counted from 0"));
    }
    frame.begin();
    builder.node("Cast", {frame.nameOf(form.output)}, std::vector<std::string>{"text_features"},
                 {{"to", onnx::TensorProto::FLOAT}});
    builder.output("text_features", onnx::TensorProto::FLOAT, {1, form.dimension});
    if (form.outputType != onnx::TensorProto::FLOAT)
        said.append(QStringLiteral("the vector cast to 32-bit floats"));
    if (form.ids != "input_ids" || form.output != "text_features")
        said.append(QStringLiteral("\"%1\" and \"%2\" renamed")
                        .arg(QString::fromStdString(form.ids), QString::fromStdString(form.output)));
    return said;
}

} // namespace Qorvane::Encoders
