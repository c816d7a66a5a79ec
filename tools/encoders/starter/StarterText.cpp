#include "encoders/starter/StarterText.h"

#include "encoders/graph/GraphBuilder.h"
#include "encoders/graph/GraphNames.h"
#include "encoders/starter/PieceGraph.h"

#include <array>
#include <functional>
#include <optional>

namespace Qorvane::Encoders {

namespace {

// The length of the application's token arrays.
constexpr std::int64_t context = 77;
// No sentence encoder of this kind takes more than 512 tokens; the marks need two.
constexpr std::int64_t greatestPieceCount = 510;

constexpr const char *hiddenState = "last_hidden_state";

Outcome<onnx::ModelProto> parsed(const QByteArray &bytes)
{
    onnx::ModelProto model;
    if (!model.ParseFromArray(bytes.constData(), int(bytes.size())) || !model.has_graph())
        return problem(QStringLiteral("a sentence encoder as ONNX"), QStringLiteral("another kind of file"),
                       QStringLiteral("use the pinned package, unchanged"));
    if (!namesIn(model.graph()).contains(hiddenState))
        return problem(
            QStringLiteral("a sentence encoder with the output \"%1\"").arg(QLatin1String(hiddenState)),
            QStringLiteral("none"), QStringLiteral("use the pinned package, unchanged"));
    return model;
}

/// The encoder's own graph between nodes that make its inputs and nodes that take its outputs.
class WrappedEncoder
{
public:
    explicit WrappedEncoder(onnx::ModelProto model)
        : m_model(std::move(model))
    {
        onnx::GraphProto &graph = *m_model.mutable_graph();
        // The application's inputs have the same names.
        std::unordered_map<std::string, std::string> names;
        for (const auto &input : graph.input())
            names[input.name()] = input.name() + "_of_encoder";
        renameValues(graph, names);
        // It has to know the names of the encoder's nodes before they are put aside.
        m_builder.emplace(graph);
        m_inner.Swap(graph.mutable_node());
        graph.clear_input();
        graph.clear_output();
        graph.clear_value_info();
    }

    WrappedEncoder(const WrappedEncoder &) = delete;
    WrappedEncoder &operator=(const WrappedEncoder &) = delete;

    GraphBuilder &builder() { return *m_builder; }

    /// Puts the encoder's nodes behind those added so far. `ids`: 1 x tokens, int64, without padding.
    void run(const std::string &ids)
    {
        GraphBuilder &builder = *m_builder;
        const std::string zeros = builder.node("Sub", {ids, ids});
        const std::array<std::int64_t, 1> one{1};
        builder.node("Identity", {ids}, std::vector<std::string>{"input_ids_of_encoder"});
        builder.node("Identity", {zeros}, std::vector<std::string>{"token_type_ids_of_encoder"});
        builder.node("Add", {zeros, builder.int64s("one", {1}, one)},
                     std::vector<std::string>{"attention_mask_of_encoder"});
        m_model.mutable_graph()->mutable_node()->MergeFrom(m_inner);
    }

    /// The whole; nothing can be added any more.
    onnx::ModelProto take() { return std::move(m_model); }

private:
    onnx::ModelProto m_model;
    std::optional<GraphBuilder> m_builder;
    google::protobuf::RepeatedPtrField<onnx::NodeProto> m_inner;
};

std::string index(GraphBuilder &builder, std::int64_t value)
{
    return builder.int64s("index", {1}, std::array<std::int64_t, 1>{value});
}

std::string shaped(GraphBuilder &builder, const std::string &tensor, const Shape &shape)
{
    return builder.node("Reshape", {tensor, builder.int64s("shape", {std::int64_t(shape.size())}, shape)});
}

/// The application's two inputs.
struct TextInputs
{
    std::string ids;
    std::string mask;

    explicit TextInputs(GraphBuilder &builder)
        : ids(builder.input("input_ids", onnx::TensorProto_DataType_INT32, {1, context}))
        , mask(builder.input("attention_mask", onnx::TensorProto_DataType_INT32, {1, context}))
    {
    }
};

std::string flag(GraphBuilder &builder, const std::string &numbers)
{
    return builder.node("Cast", {numbers}, {{"to", int(onnx::TensorProto_DataType_BOOL)}});
}

std::string wide(GraphBuilder &builder, const std::string &numbers)
{
    return builder.node("Cast", {numbers}, {{"to", int(onnx::TensorProto_DataType_INT64)}});
}

// 1 x tokens x width to 1 x width.
std::string meanOfTokens(GraphBuilder &builder, const std::string &tokens)
{
    // Pooling is the mean that is written alike in every operator set.
    const std::string turned =
        builder.node("Transpose", {tokens}, {{"perm", std::vector<std::int64_t>{0, 2, 1}}});
    return shaped(builder, builder.node("GlobalAveragePool", {turned}), {1, -1});
}

onnx::ModelProto withOutput(onnx::ModelProto model, const std::function<std::string(GraphBuilder &)> &append)
{
    GraphBuilder builder(*model.mutable_graph());
    builder.node("Identity", {append(builder)}, std::vector<std::string>{"text_features"});
    builder.output("text_features", onnx::TensorProto_DataType_FLOAT, {1, -1});
    return model;
}

} // namespace

StarterText::StarterText(onnx::ModelProto model, std::string sentence)
    : m_model(std::move(model))
    , m_sentence(std::move(sentence))
{
}

Outcome<StarterText> StarterText::english(const QByteArray &onnx, const TokenTable &tokens,
                                          const WordTable &words, const WordPiece &marks)
{
    Outcome<onnx::ModelProto> model = parsed(onnx);
    if (!model)
        return tl::unexpected(model.error());
    WrappedEncoder encoder(*std::move(model));
    GraphBuilder &builder = encoder.builder();
    const TextInputs inputs(builder);
    const auto mark = [&](const QString &piece) {
        return builder.int64s("mark", {1}, std::array<std::int64_t, 1>{marks.id(piece)});
    };
    const std::string all =
        PieceGraph(builder, tokens, words, context)
            .append(shaped(builder, inputs.ids, {context}), shaped(builder, inputs.mask, {context}));
    const std::string body =
        wide(builder, builder.node("Slice", {all, index(builder, 0), index(builder, greatestPieceCount),
                                             index(builder, 0)}));
    const std::string sentence = builder.node(
        "Concat", {mark(QStringLiteral("[CLS]")), body, mark(QStringLiteral("[SEP]"))}, {{"axis", 0}});
    encoder.run(shaped(builder, sentence, {1, -1}));
    std::string vector = meanOfTokens(builder, hiddenState);
    return StarterText(encoder.take(), std::move(vector));
}

Outcome<StarterText> StarterText::chinese(const QByteArray &onnx, const QStringList &vocabulary)
{
    Outcome<onnx::ModelProto> model = parsed(onnx);
    if (!model)
        return tl::unexpected(model.error());
    WrappedEncoder encoder(*std::move(model));
    GraphBuilder &builder = encoder.builder();
    const TextInputs inputs(builder);
    const std::string tokens = builder.node(
        "Compress",
        {shaped(builder, inputs.ids, {context}), flag(builder, shaped(builder, inputs.mask, {context}))},
        {{"axis", 0}});
    // The application cuts long texts together with their end mark. So the last one always makes place for
    // it: mostly it is that mark.
    const std::string body = builder.node(
        "Slice", {wide(builder, tokens), index(builder, 0), index(builder, -1), index(builder, 0)});
    const std::array<std::int64_t, 1> end{vocabulary.indexOf(QStringLiteral("[SEP]"))};
    const std::string sentence =
        builder.node("Concat", {body, builder.int64s("mark", {1}, end)}, {{"axis", 0}});
    encoder.run(shaped(builder, sentence, {1, -1}));
    const std::string first =
        builder.node("Slice", {hiddenState, index(builder, 0), index(builder, 1), index(builder, 1)});
    std::string vector = shaped(builder, first, {1, -1});
    return StarterText(encoder.take(), std::move(vector));
}

onnx::ModelProto StarterText::sentenceEncoder() const
{
    return withOutput(m_model, [this](GraphBuilder &) { return m_sentence; });
}

onnx::ModelProto StarterText::textEncoder(const LabelSpace::Rows &labels) const
{
    return withOutput(
        m_model, [&](GraphBuilder &builder) { return LabelSpace::appendText(builder, m_sentence, labels); });
}

} // namespace Qorvane::Encoders
