#pragma once

#include <onnx/onnx_pb.h>

#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace Qorvane::Encoders {

/// Every name of a value that the graph and the graphs inside of its nodes use.
std::unordered_set<std::string> namesIn(const onnx::GraphProto &graph);

/// Gives values other names, wherever the graph or one inside of its nodes uses them. The new names must not
/// be in use.
void renameValues(onnx::GraphProto &graph, const std::unordered_map<std::string, std::string> &newNames);

/// Calls `visit` for every tensor that holds numbers: constants of the graph and of graphs inside of nodes,
/// sparse ones and those in attributes among them.
void forEachTensor(onnx::GraphProto &graph, const std::function<void(onnx::TensorProto &)> &visit);
void forEachTensor(onnx::ModelProto &model, const std::function<void(onnx::TensorProto &)> &visit);

} // namespace Qorvane::Encoders
