#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace Qorvane {

class EncoderSession;

/// What one run of an encoder gave.
struct EncoderResult
{
    enum class Outcome {
        succeeded,
        failed,         ///< the run itself; `error` says why
        featureMissing, ///< it ran, but has no numeric output of the required name
    };

    Outcome outcome = Outcome::failed;
    /// The output flattened to 32-bit floats as the encoder gave it: neither cleaned nor normalised.
    std::vector<float> features;
    QString error;

    friend bool operator==(const EncoderResult &, const EncoderResult &) = default;
};

/// Turns a picture's tensor into features: input "pixel_values", float32, 1 x 3 x 224 x 224; output
/// "image_features", any shape and number type. Runs on the calling thread alone; any number of threads may
/// run the same encoder at once.
class VisionEncoder
{
public:
    /// Loads an encoder file. Nothing on failure, with the reason in `error`. Slow; not on the GUI thread.
    static std::shared_ptr<const VisionEncoder> load(const QString &path, QString *error);
    ~VisionEncoder();

    /// `pixelValues`: what `preprocessImage` gives.
    EncoderResult predict(const std::vector<float> &pixelValues) const;

private:
    explicit VisionEncoder(std::unique_ptr<EncoderSession> session);

    std::unique_ptr<EncoderSession> m_session;
};

/// Turns token ids into features: inputs "input_ids" and "attention_mask", int32, 1 x n; output
/// "text_features", any shape and number type. Threads as for `VisionEncoder`.
class TextEncoder
{
public:
    /// As `VisionEncoder::load`.
    static std::shared_ptr<const TextEncoder> load(const QString &path, QString *error);
    virtual ~TextEncoder();

    /// `ids` and `mask` have the same length n, which the encoder must accept.
    virtual EncoderResult predict(const std::vector<qint32> &ids, const std::vector<qint32> &mask) const;

protected:
    /// For tests' own: one without a file.
    TextEncoder();

private:
    explicit TextEncoder(std::unique_ptr<EncoderSession> session);

    std::unique_ptr<EncoderSession> m_session;
};

} // namespace Qorvane
