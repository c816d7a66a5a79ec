#pragma once

#include "encoders/Problem.h"
#include "encoders/layout/ModelFolder.h"

#include <QByteArray>

#include <optional>

namespace Qorvane::Encoders {

/// The two families of encoders that the application knows, by their vocabularies.
enum class Family { chinese, openai };

/// A vocabulary as the application reads it.
struct PublishedVocabulary
{
    QByteArray json;    ///< an object from token to id
    qsizetype size = 0; ///< tokens
    Family family = Family::openai;
    /// The token that ends a text, by the vocabulary itself.
    std::optional<int> endToken;
    QString source; ///< path of the file that it comes from
};

/// Reads a vocabulary from one file: an object from token to id, a tokenizer's description, or a text with a
/// token a line. Reads the disk; any thread.
Outcome<PublishedVocabulary> readVocabularyFile(const QString &path);

/// The folder's vocabulary, the plainest file of it; nothing when it has none.
Outcome<std::optional<PublishedVocabulary>> publishedVocabulary(const ModelFolder &folder);

} // namespace Qorvane::Encoders
