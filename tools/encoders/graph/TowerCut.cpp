#include "encoders/graph/TowerCut.h"

#include "encoders/graph/GraphNames.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Qorvane::Encoders {

namespace {

/// The names that a node takes from its graph, those that graphs inside of it take included.
std::unordered_set<std::string> namesTaken(const onnx::NodeProto &node)
{
    std::unordered_set<std::string> taken(node.input().begin(), node.input().end());
    for (const auto &attribute : node.attribute()) {
        // Some of these are the inner graph's own; a name too many does no harm.
        if (attribute.has_g())
            taken.merge(namesIn(attribute.g()));
        for (const auto &inner : attribute.graphs())
            taken.merge(namesIn(inner));
    }
    return taken;
}

/// Which nodes the needed values come from; `needed` grows by what these take. Nodes may stand in any order:
/// converters put some at the end that belong in between, and the runtime sorts them by itself.
std::vector<bool> neededNodes(const onnx::GraphProto &graph, std::unordered_set<std::string> &needed)
{
    std::unordered_multimap<std::string_view, int> givers;
    for (int index = 0; index < graph.node_size(); ++index) {
        for (const std::string &name : graph.node(index).output())
            givers.emplace(name, index);
    }
    std::vector<bool> isNeeded(static_cast<size_t>(graph.node_size()));
    std::vector<std::string> open(needed.begin(), needed.end());
    while (!open.empty()) {
        const std::string name = std::move(open.back());
        open.pop_back();
        const auto [first, end] = givers.equal_range(name);
        for (auto giver = first; giver != end; ++giver) {
            const auto index = static_cast<size_t>(giver->second);
            if (isNeeded[index])
                continue;
            isNeeded[index] = true;
            for (const std::string &taken : namesTaken(graph.node(giver->second))) {
                // An input that is left out has no name.
                if (!taken.empty() && needed.insert(taken).second)
                    open.push_back(taken);
            }
        }
    }
    return isNeeded;
}

/// Keeps the elements that `isKept` approves, in their order, without copying any.
template <typename Element, typename Predicate>
void keepOnly(google::protobuf::RepeatedPtrField<Element> &elements, Predicate isKept)
{
    int kept = 0;
    for (int index = 0; index < elements.size(); ++index) {
        if (isKept(elements.Get(index), index))
            elements.SwapElements(kept++, index);
    }
    elements.DeleteSubrange(kept, elements.size() - kept);
}

bool gives(const onnx::GraphProto &graph, const std::string &output)
{
    const auto isNamed = [&output](const auto &value) { return value.name() == output; };
    return std::ranges::any_of(graph.node(),
                               [&output](const auto &node) {
                                   return std::ranges::find(node.output(), output) != node.output().end();
                               }) ||
           std::ranges::any_of(graph.initializer(), isNamed) || std::ranges::any_of(graph.input(), isNamed);
}

} // namespace

bool cutTower(onnx::GraphProto &graph, const std::string &output)
{
    if (output.empty() || !gives(graph, output))
        return false;
    std::unordered_set<std::string> needed{output};
    const std::vector<bool> isNeeded = neededNodes(graph, needed);
    const auto isNamed = [&needed](const auto &value, int) { return needed.contains(value.name()); };

    keepOnly(*graph.mutable_node(),
             [&isNeeded](const auto &, int index) { return bool(isNeeded[static_cast<size_t>(index)]); });
    keepOnly(*graph.mutable_initializer(), isNamed);
    keepOnly(*graph.mutable_sparse_initializer(),
             [&needed](const auto &tensor, int) { return needed.contains(tensor.values().name()); });
    keepOnly(*graph.mutable_input(), isNamed);
    keepOnly(*graph.mutable_value_info(), isNamed);
    keepOnly(*graph.mutable_output(), [&output](const auto &value, int) { return value.name() == output; });
    keepOnly(*graph.mutable_quantization_annotation(),
             [&needed](const auto &annotation, int) { return needed.contains(annotation.tensor_name()); });
    return true;
}

} // namespace Qorvane::Encoders
