#pragma once

#include "encoders/Problem.h"
#include "encoders/graph/Adapters.h"
#include "encoders/graph/GraphRun.h"
#include "encoders/graph/OnnxGraph.h"

#include <optional>
#include <vector>

namespace Qorvane::Encoders {

/// What a graph is, by the forms of its inputs.
enum class GraphKind { vision, text, joint, other };

/// The inputs that a graph declares and that aren't constants of it, and its outputs; a shape that isn't told
/// is empty, an open size -1.
std::vector<ValueForm> declaredInputs(const onnx::GraphProto &graph);
std::vector<ValueForm> declaredOutputs(const onnx::GraphProto &graph);

/// One rank 4 input of floats makes a vision graph, a rank 2 input of integers a text graph, both a joint
/// one.
GraphKind kindOf(const onnx::GraphProto &graph);

/// Which output is the vector of a picture, or of a text: by its name, else the only one of rank 2. `outputs`
/// as declared, or as the runtime found them out. `fileName` is for the problem.
Outcome<ValueForm> visionOutput(const std::vector<ValueForm> &outputs, const QString &fileName);
Outcome<ValueForm> textOutput(const std::vector<ValueForm> &outputs, const QString &fileName);

/// What the graph takes, with the sizes that its shapes leave open as `openHeight`, `openWidth` and
/// `openContext`; `output` is the vector. The graph must be one tower's. Batches of any number or of one are
/// taken.
Outcome<VisionForm> recogniseVision(const onnx::GraphProto &graph, const ValueForm &output, int openHeight,
                                    int openWidth, const QString &fileName);
Outcome<TextForm> recogniseText(const onnx::GraphProto &graph, const ValueForm &output, int openContext,
                                const QString &fileName);

/// "pixel_values (float32, ? x 3 x 224 x 224)", for messages.
QString formText(const ValueForm &form);

} // namespace Qorvane::Encoders
