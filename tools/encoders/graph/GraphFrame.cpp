#include "encoders/graph/GraphFrame.h"

#include "encoders/graph/Adapters.h"
#include "encoders/graph/GraphNames.h"

#include <algorithm>

namespace Qorvane::Encoders {

namespace {

// From this version on, constants needn't be inputs too.
constexpr int irVersionOfOwnConstants = 4;

constexpr char adaptedKey[] = "qorvane.adapted";

} // namespace

bool isAdapted(const onnx::ModelProto &model)
{
    return std::ranges::any_of(model.metadata_props(),
                               [](const auto &entry) { return entry.key() == adaptedKey; });
}

GraphFrame::GraphFrame(onnx::ModelProto &model, const std::vector<std::string> &reserved)
    : m_graph(*model.mutable_graph())
    , m_moved(movedNames(m_graph, reserved))
    , m_builder(m_graph)
{
    if (model.ir_version() < irVersionOfOwnConstants)
        model.set_ir_version(irVersionOfOwnConstants);
    auto *mark = model.add_metadata_props();
    mark->set_key(adaptedKey);
    mark->set_value("1");
    m_graph.clear_input();
    m_graph.clear_output();
    m_graph.mutable_node()->Swap(&m_published);
}

std::unordered_map<std::string, std::string> GraphFrame::movedNames(onnx::GraphProto &graph,
                                                                    const std::vector<std::string> &reserved)
{
    GraphBuilder names(graph);
    const auto used = namesIn(graph);
    std::unordered_map<std::string, std::string> moved;
    for (const std::string &name : reserved) {
        if (used.contains(name))
            moved.emplace(name, names.freshName("published_" + name));
    }
    renameValues(graph, moved);
    return moved;
}

std::string GraphFrame::nameOf(const std::string &name) const
{
    const auto found = m_moved.find(name);
    return found == m_moved.end() ? name : found->second;
}

void GraphFrame::connect(const std::string &value, const std::string &name)
{
    m_builder.node("Identity", {value}, std::vector<std::string>{nameOf(name)});
}

void GraphFrame::begin()
{
    m_graph.mutable_node()->MergeFrom(m_published);
    m_published.Clear();
}

} // namespace Qorvane::Encoders
