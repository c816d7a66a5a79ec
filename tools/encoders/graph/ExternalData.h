#pragma once

#include "encoders/Problem.h"

#include <QFile>
#include <QHash>
#include <QString>

#include <onnx/onnx_pb.h>

#include <memory>
#include <optional>

namespace Qorvane::Encoders {

/// Where a tensor's numbers lie in a file beside its model.
struct ExternalPlace
{
    QString path; ///< all links followed
    qint64 offset = 0;
    qint64 length = 0;
};

/// Whether the tensor's numbers lie in another file.
bool isExternal(const onnx::TensorProto &tensor);

/// The number of bytes that a tensor of this type and shape takes without compression; nothing when it has no
/// such form or the product is too large for any file.
std::optional<qint64> rawByteCount(const onnx::TensorProto &tensor);

/// Where an external tensor's numbers are, when that is a plain file in `folder` or below and holds them.
/// `folder` is absolute with all links followed. Reads the disk; any thread.
Outcome<ExternalPlace> externalPlace(const onnx::TensorProto &tensor, const QString &folder);

/// Reads numbers from files beside a model; a file is opened once.
class ExternalReader
{
public:
    Outcome<QByteArray> read(const ExternalPlace &place);

private:
    QHash<QString, std::shared_ptr<QFile>> m_files;
};

} // namespace Qorvane::Encoders
