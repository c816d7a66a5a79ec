#pragma once

#include "encoders/Problem.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <vector>

namespace Qorvane::Encoders {

/// The vocabulary of a BERT-like encoder, and how it cuts text into pieces: lower case without accents, words
/// and single punctuation marks, then greedily the longest known piece, "##" before those inside a word.
class WordPiece
{
public:
    /// From a tokenizer.json whose model is "WordPiece".
    static Outcome<WordPiece> fromTokenizerJson(const QByteArray &json);

    explicit WordPiece(QHash<QString, int> vocabulary);

    const QHash<QString, int> &vocabulary() const { return m_vocabulary; }
    /// -1 when there is no such piece.
    int id(const QString &piece) const { return m_vocabulary.value(piece, -1); }

    /// The ids of `text`; `isInsideWord` when it goes on a word that began before it. A word that can't be
    /// cut becomes [UNK], as the encoder learnt it; so does nothing when there is no such piece.
    std::vector<int> ids(const QString &text, bool isInsideWord = false) const;

    /// Whether a text that follows `text` without a blank goes on a word.
    static bool endsInsideWord(const QString &text);

private:
    void appendWord(const QString &word, bool isInsideWord, std::vector<int> &ids) const;

    QHash<QString, int> m_vocabulary;
};

} // namespace Qorvane::Encoders
