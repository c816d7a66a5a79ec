#pragma once

#include "encoders/graph/GraphBuilder.h"
#include "encoders/starter/WordTable.h"

namespace Qorvane::Encoders {

/// Adds the nodes that turn the application's byte-pair tokens into an encoder's pieces.
class PieceGraph
{
public:
    /// All must outlive this. `context`: the length of the token arrays.
    PieceGraph(GraphBuilder &builder, const TokenTable &tokens, const WordTable &words, std::int64_t context);

    /// `ids` and `mask`: `context` int32 numbers each. Gives the name of the pieces of all tokens in a row,
    /// int32, without gaps.
    std::string append(const std::string &ids, const std::string &mask);

private:
    /// What is known of the words that begin at each token.
    struct Found
    {
        std::string pieces;      ///< context x pieces, plus one; 0 where no word was found
        std::string isSwallowed; ///< context x 1, greater than 0 for the tokens of a word behind its first
    };

    std::string isInsideWord(const std::string &ids);
    Found words(const std::string &ids, const std::string &isInside);
    /// The words of one length, as `Found::pieces`.
    std::string matches(const WordTable::Length &length, const std::string &wideIds);
    /// Moved by `places` towards the end, or, when negative, the beginning; filled up with `zeros`, as many
    /// as places.
    std::string shifted(const std::string &tensor, std::int64_t places, const std::string &zeros);
    std::string sliced(const std::string &tensor, std::int64_t from, std::int64_t to, std::int64_t axis = 0);
    std::string shaped(const std::string &tensor, const Shape &shape);
    std::string cast(const std::string &tensor, int type);

    GraphBuilder &m_builder;
    const TokenTable &m_tokens;
    const WordTable &m_words;
    std::int64_t m_context;
};

} // namespace Qorvane::Encoders
