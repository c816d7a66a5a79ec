#include "encoders/graph/GraphNames.h"

namespace Qorvane::Encoders {

namespace {

/// Calls `visit` for every place in the graph, and in those inside of its nodes, where a value's name stands.
void forEachName(onnx::GraphProto &graph, const std::function<void(std::string &)> &visit)
{
    for (auto &value : *graph.mutable_input())
        visit(*value.mutable_name());
    for (auto &value : *graph.mutable_output())
        visit(*value.mutable_name());
    for (auto &value : *graph.mutable_value_info())
        visit(*value.mutable_name());
    for (auto &tensor : *graph.mutable_initializer())
        visit(*tensor.mutable_name());
    for (auto &tensor : *graph.mutable_sparse_initializer()) {
        if (tensor.has_values())
            visit(*tensor.mutable_values()->mutable_name());
    }
    for (auto &annotation : *graph.mutable_quantization_annotation())
        visit(*annotation.mutable_tensor_name());
    for (auto &node : *graph.mutable_node()) {
        for (std::string &name : *node.mutable_input())
            visit(name);
        for (std::string &name : *node.mutable_output())
            visit(name);
        for (auto &attribute : *node.mutable_attribute()) {
            if (attribute.has_g())
                forEachName(*attribute.mutable_g(), visit);
            for (auto &inner : *attribute.mutable_graphs())
                forEachName(inner, visit);
        }
    }
}

void forEachTensorOf(onnx::NodeProto &node, const std::function<void(onnx::TensorProto &)> &visit)
{
    const auto visitSparse = [&visit](onnx::SparseTensorProto &sparse) {
        if (sparse.has_values())
            visit(*sparse.mutable_values());
        if (sparse.has_indices())
            visit(*sparse.mutable_indices());
    };
    for (auto &attribute : *node.mutable_attribute()) {
        if (attribute.has_t())
            visit(*attribute.mutable_t());
        for (auto &tensor : *attribute.mutable_tensors())
            visit(tensor);
        if (attribute.has_sparse_tensor())
            visitSparse(*attribute.mutable_sparse_tensor());
        for (auto &sparse : *attribute.mutable_sparse_tensors())
            visitSparse(sparse);
        if (attribute.has_g())
            forEachTensor(*attribute.mutable_g(), visit);
        for (auto &inner : *attribute.mutable_graphs())
            forEachTensor(inner, visit);
    }
}

} // namespace

std::unordered_set<std::string> namesIn(const onnx::GraphProto &graph)
{
    std::unordered_set<std::string> names;
    // Reading only: the visitor has one form for both uses.
    forEachName(const_cast<onnx::GraphProto &>(graph), [&names](std::string &name) { names.insert(name); });
    return names;
}

void renameValues(onnx::GraphProto &graph, const std::unordered_map<std::string, std::string> &newNames)
{
    forEachName(graph, [&newNames](std::string &name) {
        if (const auto found = newNames.find(name); found != newNames.end())
            name = found->second;
    });
}

void forEachTensor(onnx::GraphProto &graph, const std::function<void(onnx::TensorProto &)> &visit)
{
    for (auto &tensor : *graph.mutable_initializer())
        visit(tensor);
    for (auto &sparse : *graph.mutable_sparse_initializer()) {
        if (sparse.has_values())
            visit(*sparse.mutable_values());
        if (sparse.has_indices())
            visit(*sparse.mutable_indices());
    }
    for (auto &node : *graph.mutable_node())
        forEachTensorOf(node, visit);
}

void forEachTensor(onnx::ModelProto &model, const std::function<void(onnx::TensorProto &)> &visit)
{
    forEachTensor(*model.mutable_graph(), visit);
    for (auto &function : *model.mutable_functions()) {
        for (auto &node : *function.mutable_node())
            forEachTensorOf(node, visit);
    }
}

} // namespace Qorvane::Encoders
