#pragma once

#include "encoders/Problem.h"
#include "semantic/EncoderLoading.h"
#include "semantic/TokenizerService.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Qorvane::Encoders {

/// A pair of encoders with the tokenizer that goes with it, embedding as the application does.
class InstalledPair
{
public:
    /// The pair that the application would take for a user of this language from `directories`, in their
    /// order: each file of the other family's stands in for one that is missing. A pair that mixes families
    /// is refused, since its figures would mean nothing. Loads; takes seconds.
    static Outcome<InstalledPair> load(bool isChinese, const QStringList &directories);

    /// Unit length or all zero. Any thread, any number at once.
    Outcome<std::vector<float>> embedPicture(const QImage &thumbnail) const;
    Outcome<std::vector<float>> embedText(const QString &text) const;

    const QString &visionPath() const { return m_visionPath; }
    const QString &textPath() const { return m_textPath; }

private:
    InstalledPair(EncoderPair encoders, TokenizerService tokenizer);

    TokenizerService::EncodedText encoded(const QString &text) const;

    EncoderPair m_encoders;
    TokenizerService m_tokenizer;
    QString m_visionPath;
    QString m_textPath;
};

} // namespace Qorvane::Encoders
