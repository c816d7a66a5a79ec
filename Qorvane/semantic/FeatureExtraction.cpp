#include "semantic/FeatureExtraction.h"

#include "semantic/NumberText.h"
#include "semantic/Preprocessing.h"

namespace Qorvane {

namespace {

// The context length of the CLIP text encoders (Radford et al., 2021); the application uses it for both
// families.
constexpr int contextLength = 77;

/// How an encoder's outcome is told.
struct OutcomeTexts
{
    QString succeeded; ///< the vector's length follows
    QString failed;    ///< the reason follows
    QString featureMissing;
};

Extraction failure(const QString &line)
{
    return {.vector = std::nullopt, .logLines = {line}};
}

Extraction finished(EncoderResult result, const OutcomeTexts &texts)
{
    switch (result.outcome) {
    case EncoderResult::Outcome::failed:
        return failure(texts.failed + result.error);
    case EncoderResult::Outcome::featureMissing:
        return failure(texts.featureMissing);
    case EncoderResult::Outcome::succeeded:
        break;
    }
    FeatureVector vector = normalised(std::move(result.features));
    const QStringList lines{texts.succeeded + QString::number(vector.values.size()), normLine(vector)};
    return {.vector = std::move(vector.values), .logLines = lines};
}

} // namespace

Extraction extractImage(const VisionEncoder &encoder, const QImage &image,
                        const std::optional<QString> &label)
{
    const auto pixelValues = preprocessImage(image);
    if (!pixelValues)
        return failure(QStringLiteral("❌ Failed to preprocess image"));
    const QString subject = label ? QStringLiteral(" [") + *label + u']' : QString();
    return finished(
        encoder.predict(*pixelValues),
        {.succeeded = QStringLiteral("✅ 图像特征提取成功") + subject + QStringLiteral("，特征维度: "),
         .failed = QStringLiteral("❌ Failed to run vision model prediction: "),
         .featureMissing = QStringLiteral("❌ Failed to get image_features from prediction")});
}

QStringList tokenLines(const TokenizerService::EncodedText &tokens)
{
    constexpr size_t headLength = 10;
    return {
        QStringLiteral("📝 分词结果 - input_ids前10个: ") + listText(head(tokens.ids, headLength)),
        QStringLiteral("🧾 token_ids(全部): ") + listText(head(tokens.ids, tokens.ids.size())),
        QStringLiteral("👁️ attention_mask前10个: ") + listText(head(tokens.mask, headLength)),
    };
}

TokenizerService::EncodedText tokenized(const QString &text)
{
    const TokenizerService &tokenizer = TokenizerService::shared();
    switch (tokenizer.mode()) {
    case TokenizerService::Mode::chineseClip:
        return tokenizer.encode(tokenizer.tokenizeChinese(text), contextLength);
    case TokenizerService::Mode::openaiClip:
        return tokenizer.encode(tokenizer.tokenizeOpenAI(text), contextLength);
    }
    return {};
}

Extraction extractText(const TextEncoder &encoder, const TokenizerService::EncodedText &tokens)
{
    return finished(encoder.predict(tokens.ids, tokens.mask),
                    {.succeeded = QStringLiteral("✅ 文本特征提取成功，特征维度: "),
                     .failed = QStringLiteral("❌ Failed to extract text features: "),
                     .featureMissing = QStringLiteral("❌ Failed to get text features")});
}

} // namespace Qorvane
