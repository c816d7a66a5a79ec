#include "semantic/EncoderLoading.h"

#include "platform/Log.h"

#include <mutex>
#include <utility>

namespace Qorvane {

namespace {

std::mutex wrapperMutex;

TextEncoderWrapper &currentWrapper()
{
    static TextEncoderWrapper instance;
    return instance;
}

std::shared_ptr<const TextEncoder> wrapped(std::shared_ptr<const TextEncoder> encoder)
{
    const std::scoped_lock lock(wrapperMutex);
    return encoder && currentWrapper() ? currentWrapper()(encoder) : encoder;
}

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
    pair.text = wrapped(loadEncoder<TextEncoder>(files.text, QStringLiteral("✅(bg) 文本模型加载成功: "),
                                                 QStringLiteral("❌(bg) 文本模型加载失败: ")));
    return pair;
}

void wrapTextEncodersForTests(TextEncoderWrapper wrapper)
{
    const std::scoped_lock lock(wrapperMutex);
    currentWrapper() = std::move(wrapper);
}

} // namespace Qorvane
