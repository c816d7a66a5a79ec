#include "encoders/starter/LabelEncoding.h"

#include "semantic/FeatureExtraction.h"
#include "semantic/TokenizerService.h"

#include <QFile>
#include <QTemporaryDir>

#include <memory>

namespace Qorvane::Encoders {

namespace {

// The application's own length of token arrays.
constexpr int contextLength = 77;

tl::unexpected<Problem> failed(const QString &what)
{
    return problem(
        QStringLiteral("the sentence encoder to run"), what,
        QStringLiteral("fetch the inference runtime with scripts/fetch-onnxruntime.sh, then run this "
                       "again"));
}

// The runtime reads a graph of this size fastest from a file.
Outcome<std::shared_ptr<const TextEncoder>> loaded(const onnx::ModelProto &model)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("sentence.onnx")));
    const std::string bytes = model.SerializeAsString();
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(bytes.data(), qint64(bytes.size())) != qint64(bytes.size()))
        return problem(QStringLiteral("room for a temporary file"), file.errorString(),
                       QStringLiteral("free the disk, or name another folder in TMPDIR"));
    file.close();
    QString error;
    std::shared_ptr<const TextEncoder> encoder = TextEncoder::load(file.fileName(), &error);
    if (!encoder)
        return failed(error);
    return encoder;
}

} // namespace

Outcome<LabelSpace::Rows> encodedLabels(const onnx::ModelProto &sentenceEncoder, const QByteArray &vocabulary,
                                        const LabelWording &wording,
                                        const std::function<void(double)> &report)
{
    const auto encoder = loaded(sentenceEncoder);
    if (!encoder)
        return tl::unexpected(encoder.error());
    const TokenizerService tokenizer(parseVocabulary(vocabulary).value_or(TokenizerVocabulary()));
    const auto encode = [&](const QString &text) {
        const bool isChinese = tokenizer.mode() == TokenizerService::Mode::chineseClip;
        if (isChinese)
            return extractText(**encoder, tokenizer.encode(tokenizer.tokenizeChinese(text), contextLength));
        // A word with a comma behind it is cut in other places than the word alone.
        const QString spaced = QString(text).replace(QStringLiteral(","), QStringLiteral(" ,"));
        return extractText(**encoder, tokenizer.encode(tokenizer.tokenizeOpenAI(spaced), contextLength));
    };

    LabelSpace::Rows rows;
    for (qsizetype label = 0; label < wording.names.size(); ++label) {
        const Extraction name = encode(wording.names.at(label));
        const Extraction phrase = encode(wording.phrases.at(label));
        if (!name.vector || !phrase.vector)
            return failed((name.vector ? phrase : name).logLines.join(u' '));
        const std::vector<float> row = LabelSpace::mixed(*name.vector, *phrase.vector, wording.phraseShare);
        rows.width = row.size();
        rows.values.insert(rows.values.end(), row.begin(), row.end());
        report(double(label + 1) / double(wording.names.size()));
    }
    return rows;
}

} // namespace Qorvane::Encoders
