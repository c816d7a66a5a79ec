#pragma once

#include "media/EmbeddingMessages.h"
#include "media/Image.h"

#include <QString>

#include <optional>

namespace Qorvane {

/// One picture's vector, had by message from whoever owns the encoders: a request with an identity of its
/// own goes out, and the response that repeats it is the answer. A response that comes after the wait is over
/// finds nobody and is lost.
class EmbeddingRequest
{
public:
    /// `timeout` in seconds.
    explicit EmbeddingRequest(double timeout)
        : m_timeout(timeout)
    {
    }

    /// The vector of `image`; `filename` is for the other side's log. Empty when the other side couldn't
    /// make one; nothing when it answered without a vector, or not in time. Blocks; any thread but the
    /// GUI's, which has to deliver the answer.
    std::optional<EmbeddingMessages::EmbeddingVector> send(const Image &image, const QString &filename) const;

private:
    double m_timeout;
};

} // namespace Qorvane
