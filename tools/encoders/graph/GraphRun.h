#pragma once

#include "encoders/Problem.h"

#include <QHash>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Ort {
struct Session;
}

namespace Qorvane::Encoders {

/// Numbers of any type with a shape, as graphs take them.
struct Tensor
{
    int type = 0; ///< an `onnx::TensorProto_DataType`
    std::vector<std::int64_t> shape;
    std::vector<std::byte> bytes; ///< in memory order, the machine's own byte order

    /// `values` as elements of a type that holds numbers: float, float16, double, the integers or bool.
    static Tensor of(int type, std::vector<std::int64_t> shape, const std::vector<double> &values);
};

/// What a graph says of one of its inputs or outputs.
struct ValueForm
{
    std::string name;
    int type = 0;                    ///< an `onnx::TensorProto_DataType`; 0 when it is no tensor
    std::vector<std::int64_t> shape; ///< -1 for a size that is left open

    friend bool operator==(const ValueForm &, const ValueForm &) = default;
};

/// What an output gave.
struct RunResult
{
    std::vector<float> values; ///< in memory order, whatever type they had
    std::vector<std::int64_t> shape;

    friend bool operator==(const RunResult &, const RunResult &) = default;
};

/// Runs a graph of any form. Takes two threads at most. Runs one at a time.
class GraphRun
{
public:
    /// Loads a model file. Slow; any thread.
    static Outcome<GraphRun> open(const QString &path);
    /// Loads a model from a file's content; it can have no weights elsewhere.
    static Outcome<GraphRun> fromBytes(const std::string &bytes);
    GraphRun(GraphRun &&) noexcept;
    GraphRun &operator=(GraphRun &&) noexcept;
    ~GraphRun();

    const std::vector<ValueForm> &inputs() const { return m_inputs; }
    /// With the shapes that the runtime found out, also where the file says nothing of them.
    const std::vector<ValueForm> &outputs() const { return m_outputs; }

    /// What the output `output` gives for these inputs.
    Outcome<RunResult> run(const QHash<QString, Tensor> &inputs, const std::string &output);

private:
    explicit GraphRun(std::unique_ptr<Ort::Session> session);

    std::unique_ptr<Ort::Session> m_session;
    std::vector<ValueForm> m_inputs;
    std::vector<ValueForm> m_outputs;
};

} // namespace Qorvane::Encoders
