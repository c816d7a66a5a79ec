#pragma once

#include "semantic/Encoder.h"
#include "semantic/FeatureVector.h"
#include "semantic/TokenizerService.h"

#include <QImage>
#include <QStringList>

#include <optional>

namespace Qorvane {

/// The result of embedding a picture or a text, with what the log shall say about it: the lines are written
/// by whoever waits for the result, so that those of several extractions at work don't mix.
struct Extraction
{
    std::optional<std::vector<float>> vector; ///< unit length or all zero; nothing on failure
    QStringList logLines;

    friend bool operator==(const Extraction &, const Extraction &) = default;
};

/// Embeds `image`. Takes as long as the encoder does; any thread but the GUI's.
Extraction extractImage(const VisionEncoder &encoder, const QImage &image,
                        const std::optional<QString> &label);

/// The log lines that show how a text was tokenized.
QStringList tokenLines(const TokenizerService::EncodedText &tokens);

/// The tokens of `text` as the text encoders take them. The first call reads the vocabulary; any thread but
/// the GUI's.
TokenizerService::EncodedText tokenized(const QString &text);

/// Embeds tokenized text. Threads as above.
Extraction extractText(const TextEncoder &encoder, const TokenizerService::EncodedText &tokens);

} // namespace Qorvane
