#include "semantic/EncoderLoading.h"

#include "platform/Log.h"

namespace Qorvane {

namespace {

template <typename Encoder>
std::shared_ptr<const Encoder> loadEncoder(const std::optional<FileUrl> &file, const QString &successLine,
                                           const QString &failureLine)
{
    if (!file)
        return nullptr;
    QString error;
    auto encoder = Encoder::load(file->path(), &error);
    Log::line(encoder ? successLine + file->lastPathComponent() : failureLine + error);
    return encoder;
}

} // namespace

EncoderPair loadEncoders(const EncoderFiles &files)
{
    EncoderPair pair;
    pair.vision = loadEncoder<VisionEncoder>(files.vision, QStringLiteral("✅(bg) 视觉模型加载成功: "),
                                             QStringLiteral("❌(bg) 视觉模型加载失败: "));
    pair.text = loadEncoder<TextEncoder>(files.text, QStringLiteral("✅(bg) 文本模型加载成功: "),
                                         QStringLiteral("❌(bg) 文本模型加载失败: "));
    return pair;
}

} // namespace Qorvane
