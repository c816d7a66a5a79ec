#pragma once

#include "encoders/Problem.h"

#include <QByteArrayView>

namespace Qorvane::Encoders {

/// What reading a model file may cost. The defaults are far above what real encoders have and far below what
/// would trouble a desktop.
struct ModelLimits
{
    /// The file format can't hold more.
    qint64 fileSize = (qint64(1) << 31) - 1;
    /// Nodes, constants, attributes, types, sizes and names together; a large encoder has a tenth of that.
    /// Each takes two bytes in a file and about a hundred in memory.
    qint64 elements = 2'000'000;
    /// Bytes of integers in the packed form, which takes up to eight times as much in memory.
    qint64 packedIntegers = qint64(256) << 20;
    /// Weights in files beside the model; what they take on disk.
    qint64 externalData = qint64(8) << 30;
};

/// Walks the file's bytes, before anything is allocated from them: fails unless they have the form of a
/// model within the limits. `name` is the file's, for the problem. Any thread.
Outcome<void> scanModel(QByteArrayView bytes, const QString &name, const ModelLimits &limits = {});

} // namespace Qorvane::Encoders
