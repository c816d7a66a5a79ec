#include "semantic/TokenizerService.h"

#include "platform/Bundle.h"
#include "platform/Characters.h"
#include "platform/ChineseLocale.h"
#include "platform/Log.h"
#include "platform/WhiteSpace.h"

#include <algorithm>
#include <utility>

namespace Qorvane {

namespace {

// Stands at the head of a key that begins a word behind a blank, in vocabularies of the byte-pair family.
constexpr QChar spacePrefix(0x0120); // Ġ
// Stands at the end of a key that ends a word.
constexpr QStringView endOfWordSuffix = u"</w>";

// The longest word the Chinese mode looks for, in characters.
constexpr qsizetype longestChineseWord = 4;

TokenizerService::Mode modeOf(const TokenizerVocabulary &vocabulary)
{
    const bool isChinese = vocabulary.contains(u"[CLS]") && vocabulary.contains(u"[SEP]");
    return isChinese ? TokenizerService::Mode::chineseClip : TokenizerService::Mode::openaiClip;
}

bool isBlank(QStringView text)
{
    return std::all_of(text.begin(), text.end(), isWhiteSpace);
}

// Where each Unicode scalar begins, in UTF-16 units, and last the text's own length.
QList<qsizetype> scalarBoundaries(QStringView text)
{
    QList<qsizetype> boundaries{0};
    for (qsizetype at = 0; at < text.size(); boundaries.append(at)) {
        const bool isPair =
            text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
        at += isPair ? 2 : 1;
    }
    return boundaries;
}

QString withoutLeadingSpacePrefixes(const QString &token)
{
    QStringList left = characters(token);
    while (!left.isEmpty() && left.constFirst() == spacePrefix)
        left.removeFirst();
    return left.join(QString());
}

} // namespace

const TokenizerService &TokenizerService::shared()
{
    static const TokenizerService instance(isChineseLocale(), Bundle::resourceDirectories());
    return instance;
}

TokenizerService::TokenizerService(bool isChinese, const QStringList &resourceDirectories)
    : TokenizerService(loadVocabulary(isChinese, resourceDirectories))
{
}

TokenizerService::TokenizerService(TokenizerVocabulary vocabulary)
    : m_vocabMap(std::move(vocabulary))
    , m_mode(modeOf(m_vocabMap))
{
    Log::line(QStringLiteral("🧠 Tokenizer mode: ") +
              (m_mode == Mode::chineseClip ? QStringLiteral("Chinese-CLIP") : QStringLiteral("OpenAI-CLIP")));
    if (m_mode == Mode::chineseClip || m_vocabMap.empty())
        return;
    m_openaiMaxTokenLength = 0;
    for (const auto &[token, id] : m_vocabMap) {
        // A text never has more characters than code units: most keys needn't be counted.
        if (token.size() > m_openaiMaxTokenLength)
            m_openaiMaxTokenLength = std::max(m_openaiMaxTokenLength, characterCount(token));
        m_openaiHasSpacePrefix |= token.startsWith(spacePrefix);
        m_openaiHasEndOfWordSuffix |= token.endsWith(endOfWordSuffix);
    }
}

QStringList TokenizerService::tokenizeChinese(const QString &text) const
{
    if (m_mode != Mode::chineseClip)
        return {};
    const QList<qsizetype> boundaries = characterBoundaries(text);
    const qsizetype count = boundaries.size() - 1;
    const auto part = [&](qsizetype first, qsizetype length) {
        return QStringView(text).sliced(boundaries[first], boundaries[first + length] - boundaries[first]);
    };

    QStringList tokens{QStringLiteral("[CLS]")};
    for (qsizetype at = 0; at < count;) {
        qsizetype length = std::min(longestChineseWord, count - at);
        while (length > 0 && !m_vocabMap.contains(part(at, length)))
            --length;
        // A character in no key stands for itself, and encodes as unknown later.
        const bool isKnown = length > 0;
        length = std::max<qsizetype>(length, 1);
        if (isKnown || !isBlank(part(at, 1)))
            tokens.append(part(at, length).toString());
        at += length;
    }
    tokens.append(QStringLiteral("[SEP]"));
    return tokens;
}

QStringList TokenizerService::tokenizeOpenAI(const QString &text) const
{
    if (m_mode != Mode::openaiClip)
        return {};
    const QString lowered = text.toLower();
    QStringList tokens;
    for (qsizetype at = 0; at < lowered.size();) {
        // Every blank is a single UTF-16 unit, so words can be cut without looking at surrogates.
        if (isWhiteSpace(lowered[at])) {
            ++at;
            continue;
        }
        qsizetype end = at;
        while (end < lowered.size() && !isWhiteSpace(lowered[end]))
            ++end;
        // "First" goes by the place in the whole text: behind leading blanks no word is.
        appendWord(QStringView(lowered).sliced(at, end - at), at == 0, tokens);
        at = end;
    }
    return tokens;
}

void TokenizerService::appendWord(QStringView word, bool isFirst, QStringList &tokens) const
{
    const QList<qsizetype> boundaries = scalarBoundaries(word);
    const qsizetype count = boundaries.size() - 1;
    for (qsizetype at = 0; at < count;) {
        std::optional<QString> token;
        qsizetype length = std::min(count - at, m_openaiMaxTokenLength);
        for (; length > 0; --length) {
            const QStringView piece = word.sliced(boundaries[at], boundaries[at + length] - boundaries[at]);
            token = openaiToken(piece, !isFirst && at == 0, at + length == count);
            if (token)
                break;
        }
        if (token)
            tokens.append(*token);
        // The last length tried was one: a scalar that isn't in the vocabulary disappears.
        at += std::max<qsizetype>(length, 1);
    }
}

std::optional<QString> TokenizerService::openaiToken(QStringView piece, bool followsBlank,
                                                     bool endsWord) const
{
    if (followsBlank && m_openaiHasSpacePrefix) {
        if (QString token = spacePrefix + piece.toString(); m_vocabMap.contains(token))
            return token;
    }
    if (endsWord && m_openaiHasEndOfWordSuffix) {
        if (QString token = piece.toString().append(endOfWordSuffix); m_vocabMap.contains(token))
            return token;
    }
    return m_vocabMap.contains(piece) ? std::optional(piece.toString()) : std::nullopt;
}

TokenizerService::EncodedText TokenizerService::encode(const QStringList &tokens, int maxLength) const
{
    const std::size_t length = static_cast<std::size_t>(std::max(maxLength, 0));
    const bool isChinese = m_mode == Mode::chineseClip;
    EncodedText encoded;
    encoded.ids = isChinese ? chineseIds(tokens) : openaiIds(tokens);
    encoded.ids.resize(std::min(encoded.ids.size(), length));
    encoded.mask.assign(encoded.ids.size(), 1);
    encoded.ids.resize(length, isChinese ? idOr(u"[PAD]", 0) : clipPadTokenId);
    encoded.mask.resize(length, 0);
    return encoded;
}

std::vector<qint32> TokenizerService::chineseIds(const QStringList &tokens) const
{
    const qint32 unknown = idOr(u"[UNK]", 0);
    std::vector<qint32> ids;
    ids.reserve(static_cast<std::size_t>(tokens.size()));
    for (const QString &token : tokens)
        ids.push_back(idOr(token, unknown));
    return ids;
}

std::vector<qint32> TokenizerService::openaiIds(const QStringList &tokens) const
{
    std::vector<qint32> ids{clipStartTokenId};
    for (const QString &token : tokens) {
        auto entry = m_vocabMap.find(token);
        if (entry == m_vocabMap.end())
            entry = m_vocabMap.find(withoutLeadingSpacePrefixes(token));
        if (entry != m_vocabMap.end())
            ids.push_back(entry->second);
    }
    ids.push_back(clipEndTokenId);
    return ids;
}

qint32 TokenizerService::idOr(QStringView token, qint32 fallback) const
{
    const auto entry = m_vocabMap.find(token);
    return entry == m_vocabMap.end() ? fallback : entry->second;
}

} // namespace Qorvane
