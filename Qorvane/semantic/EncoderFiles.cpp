#include "semantic/EncoderFiles.h"

#include "platform/Bundle.h"
#include "platform/Log.h"

namespace Qorvane {

namespace {

std::optional<FileUrl> findEither(const QString &primary, const QString &alternate)
{
    const auto url = findModelURL(primary);
    return url ? url : findModelURL(alternate);
}

} // namespace

std::optional<FileUrl> findModelURL(const QString &name)
{
    Log::line(QStringLiteral("🔍 Looking for model: ") + name);
    const auto path = Bundle::urlForResource(name, QStringLiteral("onnx"));
    if (!path) {
        Log::line(QStringLiteral("❌ Model not found: ") + name);
        return std::nullopt;
    }
    Log::line(QStringLiteral("✅ Found .onnx in bundle: ") + *path);
    return FileUrl::file(*path);
}

EncoderFiles findEncoders(bool isChinese)
{
    const QString chineseVision = QStringLiteral("ChineseClipVisionEncoder");
    const QString chineseText = QStringLiteral("ChineseClipTextEncoder");
    const QString otherVision = QStringLiteral("ClipVisionEncoder");
    const QString otherText = QStringLiteral("ClipTextEncoder");
    EncoderFiles files;
    files.vision =
        isChinese ? findEither(chineseVision, otherVision) : findEither(otherVision, chineseVision);
    files.text = isChinese ? findEither(chineseText, otherText) : findEither(otherText, chineseText);
    return files;
}

} // namespace Qorvane
