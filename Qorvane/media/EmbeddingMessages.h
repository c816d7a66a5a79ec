#pragma once

#include <QString>

#include <vector>

/// The pair of notifications by which the processing pipeline has a picture embedded. The pipeline doesn't
/// know who answers: it posts a request and takes the response that carries the same id. Both travel over the
/// default notification centre.
namespace Qorvane::EmbeddingMessages {

/// Posted by the pipeline, with `idKey`, `imageKey` and `filenameKey`.
inline const QString requestName = QStringLiteral("ComputeEmbeddingRequest");
/// Posted by the owner of the encoders, with `idKey` and `vectorKey`.
inline const QString responseName = QStringLiteral("ComputeEmbeddingResponse");

/// QString: the request's own identity, a UUID in text form; repeated in the response.
inline const QString idKey = QStringLiteral("id");
/// Image (media/Image.h): the picture's thumbnail.
inline const QString imageKey = QStringLiteral("image");
/// QString: the file's last path component, for log lines.
inline const QString filenameKey = QStringLiteral("filename");

/// The value under `vectorKey`: unit length, or empty when the picture couldn't be embedded. Put in with
/// QVariant::fromValue(EmbeddingVector) and taken out with QVariant::value<EmbeddingVector>().
using EmbeddingVector = std::vector<float>;
inline const QString vectorKey = QStringLiteral("vector");

} // namespace Qorvane::EmbeddingMessages
