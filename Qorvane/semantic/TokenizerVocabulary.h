#pragma once

#include <QByteArray>
#include <QHashFunctions>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <optional>
#include <unordered_map>

namespace Qorvane {

/// Lets a table of texts be asked with a part of another text, without a copy of that part.
struct TextHash
{
    using is_transparent = void;
    std::size_t operator()(QStringView text) const noexcept { return qHash(text); }
};

/// Token text to token id. Texts are the same only when their code units are: nothing is normalised.
using TokenizerVocabulary = std::unordered_map<QString, qint32, TextHash, std::equal_to<>>;

/// The 16 entries that serve when no file is found.
TokenizerVocabulary baseVocabulary();

/// Reads one JSON object from token text to integer id. Entries whose value is no integer are left out.
/// Nothing when `json` isn't an object; ends the program when an integer doesn't fit 32 bits, since such a
/// file belongs to no encoder. Any thread.
std::optional<TokenizerVocabulary> parseVocabulary(const QByteArray &json);

/// Finds the vocabulary of the language: the resource "chinese_vocab.json", or "vocab.json", in
/// `resourceDirectories`; else at the places of a source tree relative to the first of them; else the base
/// vocabulary. Logs which one it is. Any thread; reads the disk.
TokenizerVocabulary loadVocabulary(bool isChinese, const QStringList &resourceDirectories);

} // namespace Qorvane
