#include "encoders/starter/WordPiece.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Qorvane::Encoders {

namespace {

constexpr int noPiece = -1;

// Without capitals and accents, as the encoder saw all its text.
QString simplified(const QString &text)
{
    const QString decomposed = text.toLower().normalized(QString::NormalizationForm_D);
    QString kept;
    for (const QChar character : decomposed) {
        if (character.category() != QChar::Mark_NonSpacing)
            kept.append(character);
    }
    return kept;
}

bool isWordPart(QChar character)
{
    return !character.isSpace() && !character.isPunct() && !character.isSymbol() &&
           character.category() != QChar::Other_Control && character.category() != QChar::Other_Format;
}

} // namespace

Outcome<WordPiece> WordPiece::fromTokenizerJson(const QByteArray &json)
{
    const QJsonObject model = QJsonDocument::fromJson(json).object()[QLatin1String("model")].toObject();
    const QJsonObject entries = model[QLatin1String("vocab")].toObject();
    // Older files leave the kind out; only WordPiece has this prefix.
    if (entries.isEmpty() ||
        model[QLatin1String("continuing_subword_prefix")].toString() != QLatin1String("##"))
        return problem(QStringLiteral("a tokenizer.json with a WordPiece vocabulary"),
                       QStringLiteral("another kind of file"),
                       QStringLiteral("use the pinned package, unchanged"));
    QHash<QString, int> vocabulary;
    vocabulary.reserve(entries.size());
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
        vocabulary.insert(entry.key(), entry.value().toInt());
    return WordPiece(std::move(vocabulary));
}

WordPiece::WordPiece(QHash<QString, int> vocabulary)
    : m_vocabulary(std::move(vocabulary))
{
}

std::vector<int> WordPiece::ids(const QString &text, bool isInsideWord) const
{
    std::vector<int> found;
    QString word;
    const auto endWord = [&] {
        if (!word.isEmpty())
            appendWord(word, isInsideWord, found);
        word.clear();
        isInsideWord = false;
    };
    for (const QChar character : simplified(text)) {
        if (isWordPart(character)) {
            word.append(character);
            continue;
        }
        endWord();
        if (character.isPunct() || character.isSymbol())
            appendWord(character, false, found);
    }
    endWord();
    return found;
}

bool WordPiece::endsInsideWord(const QString &text)
{
    return !text.isEmpty() && isWordPart(text.back());
}

void WordPiece::appendWord(const QString &word, bool isInsideWord, std::vector<int> &ids) const
{
    std::vector<int> pieces;
    for (qsizetype at = 0; at < word.size();) {
        int piece = noPiece;
        qsizetype length = word.size() - at;
        for (; length > 0; --length) {
            const QString part = word.sliced(at, length);
            piece = id(at == 0 && !isInsideWord ? part : QStringLiteral("##") + part);
            if (piece != noPiece)
                break;
        }
        if (piece == noPiece) {
            pieces.assign(1, id(QStringLiteral("[UNK]")));
            break;
        }
        pieces.push_back(piece);
        at += length;
    }
    for (const int piece : pieces) {
        if (piece != noPiece)
            ids.push_back(piece);
    }
}

} // namespace Qorvane::Encoders
