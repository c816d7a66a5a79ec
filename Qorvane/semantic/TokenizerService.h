#pragma once

#include "semantic/TokenizerVocabulary.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace Qorvane {

/// Turns a text into the two arrays of integers that a text encoder takes. Both of its modes are greedy
/// longest-match against the vocabulary's keys, and on purpose not the textbook algorithm of their model
/// family: no word pieces in the one, no merge table in the other. Stored tag vectors depend on exactly
/// these tokens. Immutable after construction: any thread may ask.
class TokenizerService
{
public:
    enum class Mode { chineseClip, openaiClip };

    struct EncodedText
    {
        std::vector<qint32> ids;
        std::vector<qint32> mask; ///< 1 for each id that stands for something, 0 for padding

        friend bool operator==(const EncodedText &, const EncodedText &) = default;
    };

    /// The one instance of the process, built at first use from the user's language and the program's
    /// resources; a later change of language has no effect on it.
    static const TokenizerService &shared();

    /// From the vocabulary that `loadVocabulary` finds. Logs the mode.
    TokenizerService(bool isChinese, const QStringList &resourceDirectories);
    /// From this vocabulary; the mode follows from it alone. Logs the mode.
    explicit TokenizerService(TokenizerVocabulary vocabulary);

    Mode mode() const { return m_mode; }
    /// The longest key, in characters, in OpenAI mode; 1 in Chinese mode or without any key.
    qsizetype openaiMaxTokenLength() const { return m_openaiMaxTokenLength; }
    bool openaiHasSpacePrefix() const { return m_openaiHasSpacePrefix; }
    bool openaiHasEndOfWordSuffix() const { return m_openaiHasEndOfWordSuffix; }

    /// "[CLS]", the keys of at most four characters that make up `text`, "[SEP]"; a character in no key
    /// stands for itself. Empty in OpenAI mode.
    QStringList tokenizeChinese(const QString &text) const;

    /// The keys that make up the words of `text` in lower case; what is in no key disappears. Empty in
    /// Chinese mode.
    QStringList tokenizeOpenAI(const QString &text) const;

    /// Two arrays of exactly `maxLength` entries, cut or padded. A cut takes the end token away: that is
    /// what the stored vectors were made with.
    EncodedText encode(const QStringList &tokens, int maxLength) const;

private:
    void appendWord(QStringView word, bool isFirst, QStringList &tokens) const;
    std::optional<QString> openaiToken(QStringView piece, bool followsBlank, bool endsWord) const;
    std::vector<qint32> chineseIds(const QStringList &tokens) const;
    std::vector<qint32> openaiIds(const QStringList &tokens) const;
    qint32 idOr(QStringView token, qint32 fallback) const;

    static constexpr qint32 clipStartTokenId = 49406;
    static constexpr qint32 clipEndTokenId = 49407;
    static constexpr qint32 clipPadTokenId = 0;

    TokenizerVocabulary m_vocabMap; // its keys are the set of tokens in OpenAI mode
    Mode m_mode;
    qsizetype m_openaiMaxTokenLength = 1;
    bool m_openaiHasSpacePrefix = false;
    bool m_openaiHasEndOfWordSuffix = false;
};

} // namespace Qorvane
