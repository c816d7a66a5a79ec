#pragma once

#include "encoders/Problem.h"
#include "encoders/graph/ModelScan.h"

#include <QStringList>

#include <onnx/onnx_pb.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Qorvane::Encoders {

/// A model file in memory, all that it says checked for what it could do to the reader, and how it is written
/// again. Weights in files beside the model stay there until it is saved.
class OnnxGraph
{
public:
    /// What fits into one file with its weights: the format's limit, less room for what isn't weights.
    static constexpr qint64 greatestSingleFile = (qint64(1) << 31) - (qint64(64) << 20);

    /// Reads the file. Weights beside it must lie in its folder or below, also when links are followed, and
    /// be as large as the model says. Slow; any thread.
    static Outcome<OnnxGraph> load(const QString &path, const ModelLimits &limits = {});

    /// A model made in memory, without weights elsewhere.
    explicit OnnxGraph(onnx::ModelProto model);

    onnx::ModelProto &model() { return *m_model; }
    const onnx::ModelProto &model() const { return *m_model; }
    onnx::GraphProto &graph() { return *m_model->mutable_graph(); }
    const onnx::GraphProto &graph() const { return m_model->graph(); }

    /// The file's path as it was given to `load`; empty for one made in memory.
    const QString &path() const { return m_path; }
    /// The same without its folder, for messages.
    QString fileName() const;
    /// The version of the standard operators that the model is written for; 1 when it says none.
    std::int64_t opset() const;

    /// Another one with the same content, to be cut or changed apart from this.
    OnnxGraph copy() const;

    /// Writes the model to `path` and to the disk. Weights that lay elsewhere are put into it when all of it
    /// then is at most `singleFile` bytes, otherwise into one file beside, named as `path` with ".data"
    /// behind; from then on this model has them there. Gives the paths of the files written, the model's
    /// first. Any thread.
    Outcome<QStringList> save(const QString &path, qint64 singleFile = greatestSingleFile);

private:
    struct ExternalTensor;

    OnnxGraph() = default;

    Outcome<std::vector<ExternalTensor>> externalTensors();
    static Outcome<void> putInside(const std::vector<ExternalTensor> &tensors);
    static Outcome<void> putBeside(const std::vector<ExternalTensor> &tensors, const QString &path);

    std::unique_ptr<onnx::ModelProto> m_model;
    QString m_path;
    /// Where weights beside the model lie, with all links followed.
    QString m_folder;
};

} // namespace Qorvane::Encoders
