#include "encoders/starter/PieceGraph.h"

#include <array>

namespace Qorvane::Encoders {

namespace {

constexpr std::int64_t width = TokenTable::piecesPerToken;

} // namespace

PieceGraph::PieceGraph(GraphBuilder &builder, const TokenTable &tokens, const WordTable &words,
                       std::int64_t context)
    : m_builder(builder)
    , m_tokens(tokens)
    , m_words(words)
    , m_context(context)
{
}

std::string PieceGraph::append(const std::string &ids, const std::string &mask)
{
    const auto tokenCount = std::int64_t(m_tokens.goesOn.size());
    const std::string isInside = isInsideWord(ids);
    const std::string two = m_builder.int32s("two", {}, std::array<std::int32_t, 1>{2});
    const std::string rows = m_builder.node("Add", {m_builder.node("Mul", {ids, two}), isInside});
    const std::string ofTokens = m_builder.node(
        "Gather", {m_builder.int32s("pieces", {2 * tokenCount, width}, m_tokens.pieces), rows});

    const Found found = words(ids, isInside);
    const std::string zero = m_builder.floats("zero", {}, std::array{0.0f});
    const std::string one = m_builder.floats("one", {}, std::array{1.0f});
    const std::string isWord = m_builder.node("Greater", {sliced(found.pieces, 0, 1, 1), zero});
    const std::string ofWords =
        cast(m_builder.node("Sub", {found.pieces, one}), onnx::TensorProto_DataType_INT32);
    const std::string each = m_builder.node("Where", {isWord, ofWords, ofTokens});

    const std::string noPiece = m_builder.int32s("no_piece", {}, std::array{TokenTable::noPiece});
    const std::string isPiece = m_builder.node("Greater", {each, noPiece});
    const std::string isToken = cast(shaped(mask, {m_context, 1}), onnx::TensorProto_DataType_BOOL);
    const std::string isOwn = m_builder.node("Not", {m_builder.node("Greater", {found.isSwallowed, zero})});
    const std::string counts = m_builder.node("And", {isPiece, m_builder.node("And", {isToken, isOwn})});
    return m_builder.node("Compress", {shaped(each, {-1}), shaped(counts, {-1})}, {{"axis", 0}});
}

std::string PieceGraph::isInsideWord(const std::string &ids)
{
    // It is known from the token before.
    const std::string goesOn = m_builder.node(
        "Gather",
        {m_builder.int32s("goes_on", {std::int64_t(m_tokens.goesOn.size())}, m_tokens.goesOn), ids});
    return shifted(goesOn, 1, m_builder.int32s("zeros", {1}, std::array<std::int32_t, 1>{0}));
}

PieceGraph::Found PieceGraph::words(const std::string &ids, const std::string &isInside)
{
    const std::string wideIds = cast(ids, onnx::TensorProto_DataType_INT64);
    const std::string one = m_builder.floats("one", {}, std::array{1.0f});
    const std::string beginsWord = m_builder.node(
        "Sub", {one, shaped(cast(isInside, onnx::TensorProto_DataType_FLOAT), {m_context, 1})});
    const std::vector<float> nothing(std::size_t(m_context * width), 0.0f);
    Found found{.pieces = m_builder.floats("no_words", {m_context, width}, nothing),
                .isSwallowed = m_builder.floats("none", {m_context, 1},
                                                std::vector<float>(std::size_t(m_context), 0.0f))};
    for (const WordTable::Length &length : m_words.lengths) {
        if (length.keys.empty())
            continue;
        const std::string pieces = m_builder.node("Mul", {matches(length, wideIds), beginsWord});
        found.pieces = m_builder.node("Add", {found.pieces, pieces});
        const std::string first = sliced(pieces, 0, 1, 1);
        for (std::int64_t behind = 1; behind < length.tokens; ++behind) {
            const std::vector<float> zeros(std::size_t(behind), 0.0f);
            const std::string swallowed =
                shifted(first, behind, m_builder.floats("zeros", {behind, 1}, zeros));
            found.isSwallowed = m_builder.node("Add", {found.isSwallowed, swallowed});
        }
    }
    return found;
}

std::string PieceGraph::matches(const WordTable::Length &length, const std::string &wideIds)
{
    const std::string base = m_builder.int64s("base", {}, std::array{m_words.base});
    std::string key = wideIds;
    for (std::int64_t place = 1; place < length.tokens; ++place) {
        const std::vector<std::int64_t> zeros(std::size_t(place), 0);
        const std::string next = shifted(wideIds, -place, m_builder.int64s("zeros", {place}, zeros));
        key = m_builder.node("Add", {m_builder.node("Mul", {key, base}), next});
    }
    const auto count = std::int64_t(length.keys.size());
    const std::string isWord = m_builder.node(
        "Equal", {shaped(key, {m_context, 1}), m_builder.int64s("words", {1, count}, length.keys)});
    return m_builder.node("MatMul", {cast(isWord, onnx::TensorProto_DataType_FLOAT),
                                     m_builder.floats("word_pieces", {count, width}, length.pieces)});
}

std::string PieceGraph::shifted(const std::string &tensor, std::int64_t places, const std::string &zeros)
{
    if (places > 0)
        return m_builder.node("Concat", {zeros, sliced(tensor, 0, m_context - places)}, {{"axis", 0}});
    return m_builder.node("Concat", {sliced(tensor, -places, m_context), zeros}, {{"axis", 0}});
}

std::string PieceGraph::sliced(const std::string &tensor, std::int64_t from, std::int64_t to,
                               std::int64_t axis)
{
    const auto index = [this](std::int64_t value) {
        return m_builder.int64s("index", {1}, std::array<std::int64_t, 1>{value});
    };
    return m_builder.node("Slice", {tensor, index(from), index(to), index(axis)});
}

std::string PieceGraph::shaped(const std::string &tensor, const Shape &shape)
{
    return m_builder.node("Reshape",
                          {tensor, m_builder.int64s("shape", {std::int64_t(shape.size())}, shape)});
}

std::string PieceGraph::cast(const std::string &tensor, int type)
{
    return m_builder.node("Cast", {tensor}, {{"to", type}});
}

} // namespace Qorvane::Encoders
