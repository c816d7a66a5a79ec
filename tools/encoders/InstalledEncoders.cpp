#include "encoders/InstalledEncoders.h"

#include "platform/Bundle.h"
#include "semantic/FeatureExtraction.h"

#include <QFileInfo>

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

std::optional<QString> find(const QString &fileName, const QStringList &directories)
{
    const QFileInfo name(fileName);
    return Bundle::urlForResource(name.completeBaseName(), name.suffix(), directories);
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

FamilyFiles FamilyFiles::of(Family family)
{
    switch (family) {
    case Family::chinese:
        return {.vision = QStringLiteral("ChineseClipVisionEncoder.onnx"),
                .text = QStringLiteral("ChineseClipTextEncoder.onnx"),
                .vocabulary = QStringLiteral("chinese_vocab.json")};
    case Family::openai:
        return {.vision = QStringLiteral("ClipVisionEncoder.onnx"),
                .text = QStringLiteral("ClipTextEncoder.onnx"),
                .vocabulary = QStringLiteral("vocab.json")};
    }
    Q_UNREACHABLE();
}

InstalledPair::InstalledPair(Family family, EncoderPair encoders, TokenizerService tokenizer)
    : m_family(family)
    , m_encoders(std::move(encoders))
    , m_tokenizer(std::move(tokenizer))
{
}

Outcome<InstalledPair> InstalledPair::load(bool isChinese, const QStringList &directories)
{
    const Family own = isChinese ? Family::chinese : Family::openai;
    const Family other = isChinese ? Family::openai : Family::chinese;
    const auto ownVision = find(FamilyFiles::of(own).vision, directories);
    const auto ownText = find(FamilyFiles::of(own).text, directories);
    const auto vision = ownVision ? ownVision : find(FamilyFiles::of(other).vision, directories);
    const auto text = ownText ? ownText : find(FamilyFiles::of(other).text, directories);
    const QString remedy = QStringLiteral("import a pair with \"qorvane-encoders import\"");
    if (!vision || !text) {
        return problem(
            QStringLiteral("a vision and a text encoder"),
            QStringLiteral("no %1 encoder in %2")
                .arg(vision ? QStringLiteral("text") : QStringLiteral("vision"), placesText(directories)),
            remedy);
    }
    if (ownVision.has_value() != ownText.has_value()) {
        return problem(QStringLiteral("both encoders of one family"),
                       QStringLiteral("%1 beside %2").arg(*vision, *text), remedy);
    }
    const Family family = ownVision ? own : other;
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
    InstalledPair pair(family, std::move(encoders), TokenizerService(isChinese, directories));
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
