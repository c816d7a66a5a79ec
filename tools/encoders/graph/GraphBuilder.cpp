#include "encoders/graph/GraphBuilder.h"

#include "encoders/graph/GraphNames.h"

#include <bit>

namespace Qorvane::Encoders {

namespace {

// What the file format asks for since names of constants needn't be inputs too; every runtime that we can use
// reads it.
constexpr int irVersion = 8;

void declare(onnx::ValueInfoProto &value, const std::string &name, int type, const Shape &shape)
{
    value.set_name(name);
    auto *tensor = value.mutable_type()->mutable_tensor_type();
    tensor->set_elem_type(type);
    auto *dimensions = tensor->mutable_shape();
    for (const std::int64_t size : shape) {
        auto *dimension = dimensions->add_dim();
        if (size >= 0)
            dimension->set_dim_value(size);
    }
}

struct AttributeWriter
{
    onnx::AttributeProto &attribute;

    void operator()(std::int64_t value) const
    {
        attribute.set_type(onnx::AttributeProto::INT);
        attribute.set_i(value);
    }
    void operator()(float value) const
    {
        attribute.set_type(onnx::AttributeProto::FLOAT);
        attribute.set_f(value);
    }
    void operator()(const std::string &value) const
    {
        attribute.set_type(onnx::AttributeProto::STRING);
        attribute.set_s(value);
    }
    void operator()(const std::vector<std::int64_t> &values) const
    {
        attribute.set_type(onnx::AttributeProto::INTS);
        attribute.mutable_ints()->Add(values.begin(), values.end());
    }
    void operator()(const std::vector<float> &values) const
    {
        attribute.set_type(onnx::AttributeProto::FLOATS);
        attribute.mutable_floats()->Add(values.begin(), values.end());
    }
};

} // namespace

// Raw data of a tensor is little-endian, and written here as it lies in memory.
static_assert(std::endian::native == std::endian::little);

GraphBuilder::GraphBuilder(onnx::GraphProto &graph)
    : m_graph(graph)
    , m_names(namesIn(graph))
{
}

onnx::ModelProto GraphBuilder::emptyModel(int opset, const std::string &graphName)
{
    onnx::ModelProto model;
    model.set_ir_version(irVersion);
    model.set_producer_name("qorvane-encoders");
    model.add_opset_import()->set_version(opset);
    model.mutable_graph()->set_name(graphName);
    return model;
}

std::string GraphBuilder::freshName(const std::string &hint)
{
    std::string name = hint;
    for (int number = 2; !m_names.insert(name).second; ++number)
        name = hint + "_" + std::to_string(number);
    return name;
}

std::string GraphBuilder::input(const std::string &name, int type, const Shape &shape)
{
    declare(*m_graph.add_input(), name, type, shape);
    m_names.insert(name);
    return name;
}

void GraphBuilder::output(const std::string &name, int type, const Shape &shape)
{
    declare(*m_graph.add_output(), name, type, shape);
    m_names.insert(name);
}

template <typename Element>
std::string GraphBuilder::constant(const std::string &hint, int type, const Shape &shape,
                                   std::span<const Element> values)
{
    onnx::TensorProto &tensor = *m_graph.add_initializer();
    tensor.set_name(freshName(hint));
    tensor.set_data_type(type);
    tensor.mutable_dims()->Add(shape.begin(), shape.end());
    tensor.set_raw_data(values.data(), values.size_bytes());
    return tensor.name();
}

std::string GraphBuilder::floats(const std::string &hint, const Shape &shape, std::span<const float> values)
{
    return constant(hint, onnx::TensorProto::FLOAT, shape, values);
}

std::string GraphBuilder::int64s(const std::string &hint, const Shape &shape,
                                 std::span<const std::int64_t> values)
{
    return constant(hint, onnx::TensorProto::INT64, shape, values);
}

std::string GraphBuilder::int32s(const std::string &hint, const Shape &shape,
                                 std::span<const std::int32_t> values)
{
    return constant(hint, onnx::TensorProto::INT32, shape, values);
}

std::string GraphBuilder::bytes(const std::string &hint, const Shape &shape,
                                std::span<const std::uint8_t> values)
{
    return constant(hint, onnx::TensorProto::UINT8, shape, values);
}

std::string GraphBuilder::signedBytes(const std::string &hint, const Shape &shape,
                                      std::span<const std::int8_t> values)
{
    return constant(hint, onnx::TensorProto::INT8, shape, values);
}

std::string GraphBuilder::node(const std::string &operation, const std::vector<std::string> &inputs,
                               std::initializer_list<NodeAttribute> attributes)
{
    std::string output = freshName(operation);
    node(operation, inputs, std::vector<std::string>{output}, attributes);
    return output;
}

onnx::NodeProto &GraphBuilder::node(const std::string &operation, const std::vector<std::string> &inputs,
                                    const std::vector<std::string> &outputs,
                                    std::initializer_list<NodeAttribute> attributes)
{
    onnx::NodeProto &node = *m_graph.add_node();
    node.set_op_type(operation);
    node.mutable_input()->Add(inputs.begin(), inputs.end());
    node.mutable_output()->Add(outputs.begin(), outputs.end());
    m_names.insert(outputs.begin(), outputs.end());
    for (const NodeAttribute &given : attributes) {
        onnx::AttributeProto &attribute = *node.add_attribute();
        attribute.set_name(given.name);
        std::visit(AttributeWriter{attribute}, given.value);
    }
    return node;
}

} // namespace Qorvane::Encoders
