#pragma once

#include <onnx/onnx_pb.h>

#include <string>

namespace Qorvane::Encoders {

/// Leaves of the graph only what its output `output` needs: nodes, constants, inputs and that one output.
/// Nodes keep their order, which may be any. What two outputs share stays, so that a graph with two towers is
/// cut by cutting two copies. False, with nothing changed, when no node, constant or input gives `output`.
/// Any thread.
bool cutTower(onnx::GraphProto &graph, const std::string &output);

} // namespace Qorvane::Encoders
