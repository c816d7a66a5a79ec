#pragma once

#include <onnx/onnx_pb.h>

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <unordered_set>
#include <variant>
#include <vector>

namespace Qorvane::Encoders {

/// A node's attribute: {"axis", 1}, {"pads", std::vector<std::int64_t>{0, 0, 1, 1}}.
struct NodeAttribute
{
    using Value =
        std::variant<std::int64_t, float, std::string, std::vector<std::int64_t>, std::vector<float>>;

    NodeAttribute(std::string attributeName, Value attributeValue)
        : name(std::move(attributeName))
        , value(std::move(attributeValue))
    {
    }
    /// A plain number would fit several kinds of value.
    NodeAttribute(std::string attributeName, int number)
        : NodeAttribute(std::move(attributeName), Value(std::int64_t(number)))
    {
    }

    std::string name;
    Value value;
};

using Shape = std::vector<std::int64_t>;

/// Adds nodes and constants to a graph, under names that nothing else in it has. Nodes are appended, so each
/// must come behind those it takes its inputs from. The graph must outlive this and not be renamed meanwhile.
class GraphBuilder
{
public:
    explicit GraphBuilder(onnx::GraphProto &graph);

    /// A model without nodes, for the operator set `opset` of the standard domain.
    static onnx::ModelProto emptyModel(int opset, const std::string &graphName);

    /// `hint`, or that with a number behind it when the graph has the name. Each call gives another name.
    std::string freshName(const std::string &hint);

    /// Declares an input or output; a size of -1 is left open. `type` is an `onnx::TensorProto_DataType`.
    /// An input gives its name.
    std::string input(const std::string &name, int type, const Shape &shape);
    void output(const std::string &name, int type, const Shape &shape);

    /// Constants, by the type of their elements; an empty shape is a single number. They give their names.
    std::string floats(const std::string &hint, const Shape &shape, std::span<const float> values);
    std::string int64s(const std::string &hint, const Shape &shape, std::span<const std::int64_t> values);
    std::string int32s(const std::string &hint, const Shape &shape, std::span<const std::int32_t> values);
    std::string bytes(const std::string &hint, const Shape &shape, std::span<const std::uint8_t> values);
    std::string signedBytes(const std::string &hint, const Shape &shape, std::span<const std::int8_t> values);

    /// A node with one output, whose fresh name it gives.
    std::string node(const std::string &operation, const std::vector<std::string> &inputs,
                     std::initializer_list<NodeAttribute> attributes = {});
    /// A node with outputs of these names, which should be fresh; for more can be done to it.
    onnx::NodeProto &node(const std::string &operation, const std::vector<std::string> &inputs,
                          const std::vector<std::string> &outputs,
                          std::initializer_list<NodeAttribute> attributes = {});

private:
    template <typename Element>
    std::string constant(const std::string &hint, int type, const Shape &shape,
                         std::span<const Element> values);

    onnx::GraphProto &m_graph;
    std::unordered_set<std::string> m_names;
};

} // namespace Qorvane::Encoders
