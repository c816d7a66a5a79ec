#pragma once

#include "encoders/starter/WordPiece.h"

#include <QStringList>

#include <cstdint>

namespace Qorvane::Encoders {

/// What the application's byte-pair tokens are in pieces of a WordPiece encoder. Two rows for each token, for
/// one that begins a word and for one inside a word.
struct TokenTable
{
    /// Nearly every token has fewer pieces; the few that have more are runs of one sign.
    static constexpr std::int64_t piecesPerToken = 6;
    static constexpr std::int32_t noPiece = -1;

    /// Row 2 * id + (inside a word), `piecesPerToken` each, filled up with `noPiece`.
    std::vector<std::int32_t> pieces;
    /// By id: 1 when the token behind it goes on its word, else 0.
    std::vector<std::int32_t> goesOn;

    /// `tokens` by id: "</w>" at their end closes a word; "<|...|>" are marks that have no text.
    static TokenTable make(const QStringList &tokens, const WordPiece &encoder);
};

} // namespace Qorvane::Encoders
