#include "semantic/Encoder.h"

#include "semantic/EncoderSession.h"
#include "semantic/Preprocessing.h"

#include <exception>

namespace Qorvane {

namespace {

EncoderResult failure(const QString &error)
{
    return {.outcome = EncoderResult::Outcome::failed, .features = {}, .error = error};
}

} // namespace

VisionEncoder::VisionEncoder(std::unique_ptr<EncoderSession> session)
    : m_session(std::move(session))
{
}

VisionEncoder::~VisionEncoder() = default;

std::shared_ptr<const VisionEncoder> VisionEncoder::load(const QString &path, QString *error)
{
    auto session = EncoderSession::load(path, "image_features", error);
    return session ? std::shared_ptr<const VisionEncoder>(new VisionEncoder(std::move(session))) : nullptr;
}

EncoderResult VisionEncoder::predict(const std::vector<float> &pixelValues) const
{
    try {
        std::vector<EncoderSession::Input> inputs;
        inputs.push_back(
            {"pixel_values", EncoderSession::tensor(pixelValues, {1, 3, encoderSide, encoderSide})});
        return m_session->run(inputs);
    } catch (const std::exception &exception) {
        return failure(QString::fromUtf8(exception.what()));
    }
}

TextEncoder::TextEncoder(std::unique_ptr<EncoderSession> session)
    : m_session(std::move(session))
{
}

TextEncoder::TextEncoder() = default;

TextEncoder::~TextEncoder() = default;

std::shared_ptr<const TextEncoder> TextEncoder::load(const QString &path, QString *error)
{
    auto session = EncoderSession::load(path, "text_features", error);
    return session ? std::shared_ptr<const TextEncoder>(new TextEncoder(std::move(session))) : nullptr;
}

EncoderResult TextEncoder::predict(const std::vector<qint32> &ids, const std::vector<qint32> &mask) const
{
    const std::vector<int64_t> shape{1, static_cast<int64_t>(ids.size())};
    try {
        std::vector<EncoderSession::Input> inputs;
        inputs.push_back({"input_ids", EncoderSession::tensor(ids, shape)});
        inputs.push_back({"attention_mask", EncoderSession::tensor(mask, shape)});
        return m_session->run(inputs);
    } catch (const std::exception &exception) {
        return failure(QString::fromUtf8(exception.what()));
    }
}

} // namespace Qorvane
