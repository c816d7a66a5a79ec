#include "encoders/layout/TokenRows.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Qorvane::Encoders {

namespace {

// What hands tokens, or a table, on as they are.
constexpr std::array<std::string_view, 7> handingOn{"Cast",    "Identity",  "Reshape",         "Flatten",
                                                    "Squeeze", "Unsqueeze", "DequantizeLinear"};

bool handsOn(const onnx::NodeProto &node)
{
    return std::ranges::find(handingOn, node.op_type()) != handingOn.end() && node.input_size() > 0 &&
           node.output_size() > 0;
}

/// A graph's constants and nodes by the names of what they give and take.
struct Index
{
    explicit Index(const onnx::GraphProto &graph)
    {
        for (const auto &tensor : graph.initializer())
            constants.emplace(tensor.name(), &tensor);
        for (const auto &node : graph.node()) {
            for (const std::string &name : node.output())
                givers.emplace(name, &node);
            for (const std::string &name : node.input())
                takers.emplace(name, &node);
        }
    }

    std::unordered_map<std::string_view, const onnx::TensorProto *> constants;
    std::unordered_map<std::string_view, const onnx::NodeProto *> givers;
    std::unordered_multimap<std::string_view, const onnx::NodeProto *> takers;
};

/// The constant that `name` is or is made from.
const onnx::TensorProto *constantBehind(const Index &index, std::string_view name)
{
    // A damaged graph may lead round in a circle.
    for (size_t steps = 0; steps <= index.givers.size(); ++steps) {
        if (const auto constant = index.constants.find(name); constant != index.constants.end())
            return constant->second;
        const auto giver = index.givers.find(name);
        if (giver == index.givers.end())
            return nullptr;
        const onnx::NodeProto &node = *giver->second;
        if (node.op_type() == "Constant" && node.attribute_size() > 0 && node.attribute(0).has_t())
            return &node.attribute(0).t();
        if (!handsOn(node))
            return nullptr;
        name = node.input(0);
    }
    return nullptr;
}

} // namespace

std::optional<std::int64_t> tokenRows(const onnx::GraphProto &graph, const std::string &ids)
{
    const Index index(graph);
    std::unordered_set<std::string_view> seen{ids};
    std::vector<std::string_view> open{ids};
    while (!open.empty()) {
        const std::string_view value = open.back();
        open.pop_back();
        const auto [first, end] = index.takers.equal_range(value);
        for (auto taker = first; taker != end; ++taker) {
            const onnx::NodeProto &node = *taker->second;
            if (node.op_type() == "Gather" && node.input_size() == 2 && node.input(1) == value) {
                const onnx::TensorProto *table = constantBehind(index, node.input(0));
                if (table && table->dims_size() == 2)
                    return table->dims(0);
            } else if (handsOn(node) && node.input(0) == value && seen.insert(node.output(0)).second) {
                open.push_back(node.output(0));
            }
        }
    }
    return std::nullopt;
}

} // namespace Qorvane::Encoders
