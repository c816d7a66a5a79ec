#pragma once

#include "encoders/starter/TokenTable.h"

#include <QStringList>

#include <cstdint>
#include <functional>
#include <vector>

namespace Qorvane::Encoders {

/// Words that the application's tokenizer cuts in other places than the encoder would: the application cuts
/// "parrot" into "par" and "rot", whose pieces say nothing of a bird. Such a word is found by all of its
/// tokens at once.
struct WordTable
{
    /// The words of so many tokens each. Longer ones are too rare to be worth their place.
    static constexpr std::int64_t fewestTokens = 2;
    static constexpr std::int64_t mostTokens = 4;

    struct Length
    {
        std::int64_t tokens = 0;
        /// A word's ids as one number, the first one's in the highest digit.
        std::vector<std::int64_t> keys;
        /// `TokenTable::piecesPerToken` for each key: a piece plus one, or 0 where there is none.
        std::vector<float> pieces;
    };

    /// The base of the keys: the count of the application's tokens. Four digits of it fit 64 bits.
    std::int64_t base = 0;
    std::vector<Length> lengths;

    /// `tokenize` gives the application's token ids of a word without the marks. Words that come out right
    /// from `table` alone are left out.
    static WordTable make(const QStringList &words,
                          const std::function<std::vector<std::int32_t>(const QString &)> &tokenize,
                          const TokenTable &table, const WordPiece &encoder);
};

} // namespace Qorvane::Encoders
