#include "encoders/InstalledEncoders.h"

#include "platform/Bundle.h"
#include "semantic/FeatureExtraction.h"

#include <utility>

namespace Qorvane::Encoders {

namespace {

// The application's own; see semantic/FeatureExtraction.
constexpr int contextLength = 77;

QString placesText(const QStringList &directories)
{
    return directories.isEmpty() ? QStringLiteral("no folder of encoders at all")
                                 : directories.join(QStringLiteral(", "));
}

/// A file, and whether it is of the language's own family.
using FoundEncoder = std::pair<std::optional<QString>, bool>;

// The names as the application has them; see semantic/EncoderFiles.
FoundEncoder findEither(const QString &tower, bool isChinese, const QStringList &directories)
{
    for (const bool isOwn : {true, false}) {
        const QString family = isChinese == isOwn ? QStringLiteral("ChineseClip") : QStringLiteral("Clip");
        if (auto path = Bundle::urlForResource(family + tower, QStringLiteral("onnx"), directories))
            return {std::move(path), isOwn};
    }
    return {std::nullopt, false};
}

tl::unexpected<Problem> embeddingProblem(const QString &of, const QStringList &logLines)
{
    return problem(QStringLiteral("a vector for %1").arg(of), logLines.join(QStringLiteral("; ")),
                   QStringLiteral("import the encoders again"));
}

Outcome<std::vector<float>> vectorOf(Extraction extraction, const QString &of)
{
    if (!extraction.vector)
        return embeddingProblem(of, extraction.logLines);
    return std::move(*extraction.vector);
}

} // namespace

InstalledPair::InstalledPair(EncoderPair encoders, TokenizerService tokenizer)
    : m_encoders(std::move(encoders))
    , m_tokenizer(std::move(tokenizer))
{
}

Outcome<InstalledPair> InstalledPair::load(bool isChinese, const QStringList &directories)
{
    const auto [vision, isOwnVision] = findEither(QStringLiteral("VisionEncoder"), isChinese, directories);
    const auto [text, isOwnText] = findEither(QStringLiteral("TextEncoder"), isChinese, directories);
    const QString remedy = QStringLiteral("import a pair with \"qorvane-encoders import\"");
    if (!vision || !text) {
        return problem(
            QStringLiteral("a vision and a text encoder"),
            QStringLiteral("no %1 encoder in %2")
                .arg(vision ? QStringLiteral("text") : QStringLiteral("vision"), placesText(directories)),
            remedy);
    }
    if (isOwnVision != isOwnText) {
        return problem(QStringLiteral("both encoders of one family"),
                       QStringLiteral("%1 beside %2").arg(*vision, *text), remedy);
    }
    QString error;
    EncoderPair encoders;
    encoders.vision = VisionEncoder::load(*vision, &error);
    if (encoders.vision)
        encoders.text = TextEncoder::load(*text, &error);
    if (!encoders.isComplete()) {
        return problem(QStringLiteral("encoders that load"),
                       QStringLiteral("%1: %2").arg(encoders.vision ? *text : *vision, error), remedy);
    }
    // As in the application, the vocabulary follows the language, whatever family stands in.
    InstalledPair pair(std::move(encoders), TokenizerService(isChinese, directories));
    pair.m_visionPath = *vision;
    pair.m_textPath = *text;
    return pair;
}

Outcome<std::vector<float>> InstalledPair::embedPicture(const QImage &thumbnail) const
{
    return vectorOf(extractImage(*m_encoders.vision, thumbnail, std::nullopt), QStringLiteral("a picture"));
}

TokenizerService::EncodedText InstalledPair::encoded(const QString &text) const
{
    switch (m_tokenizer.mode()) {
    case TokenizerService::Mode::chineseClip:
        return m_tokenizer.encode(m_tokenizer.tokenizeChinese(text), contextLength);
    case TokenizerService::Mode::openaiClip:
        return m_tokenizer.encode(m_tokenizer.tokenizeOpenAI(text), contextLength);
    }
    Q_UNREACHABLE();
}

Outcome<std::vector<float>> InstalledPair::embedText(const QString &text) const
{
    return vectorOf(extractText(*m_encoders.text, encoded(text)), QStringLiteral("\"%1\"").arg(text));
}

} // namespace Qorvane::Encoders
