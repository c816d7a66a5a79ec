#include "encoders/starter/TokenTable.h"

#include <algorithm>

namespace Qorvane::Encoders {

TokenTable TokenTable::make(const QStringList &tokens, const WordPiece &encoder)
{
    const QString endOfWord = QStringLiteral("</w>");
    const auto width = std::size_t(piecesPerToken);
    TokenTable table;
    table.pieces.assign(std::size_t(tokens.size()) * 2 * width, noPiece);
    table.goesOn.assign(std::size_t(tokens.size()), 0);
    for (std::size_t id = 0; id < std::size_t(tokens.size()); ++id) {
        QString text = tokens.at(qsizetype(id));
        if (text.startsWith(QLatin1String("<|")) && text.endsWith(QLatin1String("|>")))
            continue;
        const bool closesWord = text.size() > endOfWord.size() && text.endsWith(endOfWord);
        if (closesWord)
            text.chop(endOfWord.size());
        table.goesOn[id] = !closesWord && WordPiece::endsInsideWord(text) ? 1 : 0;
        for (std::size_t inside = 0; inside < 2; ++inside) {
            const std::vector<int> pieces = encoder.ids(text, inside == 1);
            std::copy_n(pieces.begin(), std::min(pieces.size(), width),
                        table.pieces.begin() + std::ptrdiff_t((2 * id + inside) * width));
        }
    }
    return table;
}

} // namespace Qorvane::Encoders
