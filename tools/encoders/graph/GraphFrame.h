#pragma once

#include "encoders/graph/GraphBuilder.h"

#include <onnx/onnx_pb.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace Qorvane::Encoders {

/// Takes a published graph's inputs and outputs away and lets others be put around it: nodes built before
/// `begin` come in front of the published ones, those built after it behind.
class GraphFrame
{
public:
    /// `reserved`: names that the frame is going to use; values of the graph that have them get others.
    GraphFrame(onnx::ModelProto &model, const std::vector<std::string> &reserved);

    /// The builder of what comes around; fixed names are to be those reserved.
    GraphBuilder &builder() { return m_builder; }

    /// The name that the value `name` of the published graph has now.
    std::string nameOf(const std::string &name) const;

    /// Hands `value`, made in front, to the published input `name` (as it was first called).
    void connect(const std::string &value, const std::string &name);

    /// Puts the published nodes behind those built so far.
    void begin();

private:
    static std::unordered_map<std::string, std::string> movedNames(onnx::GraphProto &graph,
                                                                   const std::vector<std::string> &reserved);

    onnx::GraphProto &m_graph;
    std::unordered_map<std::string, std::string> m_moved;
    google::protobuf::RepeatedPtrField<onnx::NodeProto> m_published;
    GraphBuilder m_builder;
};

} // namespace Qorvane::Encoders
