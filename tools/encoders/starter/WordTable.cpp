#include "encoders/starter/WordTable.h"

#include <algorithm>
#include <iterator>

namespace Qorvane::Encoders {

namespace {

constexpr auto width = std::size_t(TokenTable::piecesPerToken);

// What the graph makes of the tokens one by one.
std::vector<int> piecesOf(const std::vector<std::int32_t> &ids, const TokenTable &table)
{
    std::vector<int> pieces;
    std::size_t inside = 0;
    for (const std::int32_t id : ids) {
        const auto row = table.pieces.begin() + std::ptrdiff_t((2 * std::size_t(id) + inside) * width);
        std::copy_if(row, row + std::ptrdiff_t(width), std::back_inserter(pieces),
                     [](std::int32_t piece) { return piece != TokenTable::noPiece; });
        inside = std::size_t(table.goesOn[std::size_t(id)]);
    }
    return pieces;
}

} // namespace

WordTable WordTable::make(const QStringList &words,
                          const std::function<std::vector<std::int32_t>(const QString &)> &tokenize,
                          const TokenTable &table, const WordPiece &encoder)
{
    WordTable result{.base = std::int64_t(table.goesOn.size()), .lengths = {}};
    for (std::int64_t tokens = fewestTokens; tokens <= mostTokens; ++tokens)
        result.lengths.push_back({.tokens = tokens, .keys = {}, .pieces = {}});
    for (const QString &word : words) {
        const std::vector<std::int32_t> ids = tokenize(word);
        const std::vector<int> pieces = encoder.ids(word);
        const auto tokens = std::int64_t(ids.size());
        if (tokens < fewestTokens || tokens > mostTokens || pieces.size() > width ||
            pieces == piecesOf(ids, table))
            continue;
        Length &length = result.lengths[std::size_t(tokens - fewestTokens)];
        std::int64_t key = 0;
        for (const std::int32_t id : ids)
            key = key * result.base + id;
        length.keys.push_back(key);
        for (std::size_t column = 0; column < width; ++column)
            length.pieces.push_back(column < pieces.size() ? float(pieces[column] + 1) : 0.0f);
    }
    return result;
}

} // namespace Qorvane::Encoders
