#include "encoders/graph/GraphRun.h"

#include "semantic/OnnxRuntime.h"
#include "semantic/TensorFlattening.h"

#include <QFile>

#include <onnx/onnx_pb.h>
#include <onnxruntime_cxx_api.h>

#include <cstring>
#include <exception>
#include <functional>

namespace Qorvane::Encoders {

namespace {

constexpr int threadCount = 2;

Ort::SessionOptions sessionOptions()
{
    Ort::SessionOptions options;
    options.SetIntraOpNumThreads(threadCount);
    options.AddConfigEntry("session.intra_op.allow_spinning", "0");
    return options;
}

ValueForm formOf(std::string name, const Ort::TypeInfo &type)
{
    ValueForm form{.name = std::move(name), .type = 0, .shape = {}};
    if (type.GetONNXType() != ONNX_TYPE_TENSOR)
        return form;
    const auto tensor = type.GetTensorTypeAndShapeInfo();
    // The runtime numbers the types as the file format does.
    form.type = static_cast<int>(tensor.GetElementType());
    form.shape = tensor.GetShape();
    return form;
}

Outcome<GraphRun> notLoaded(const QString &name, const QString &reason)
{
    return problem(QStringLiteral("a graph that the inference runtime can load in %1").arg(name), reason,
                   QStringLiteral("fetch the model again, or export it for operator set 17"));
}

template <typename Element>
std::vector<std::byte> elementsOf(const std::vector<double> &values)
{
    std::vector<std::byte> bytes(values.size() * sizeof(Element));
    for (size_t index = 0; index < values.size(); ++index) {
        Element element;
        if constexpr (std::is_same_v<Element, Ort::Float16_t>)
            element = Ort::Float16_t(static_cast<float>(values[index]));
        else
            element = static_cast<Element>(values[index]);
        std::memcpy(bytes.data() + index * sizeof(Element), &element, sizeof(Element));
    }
    return bytes;
}

std::vector<std::byte> elementsOf(int type, const std::vector<double> &values)
{
    switch (type) {
    case onnx::TensorProto::FLOAT:
        return elementsOf<float>(values);
    case onnx::TensorProto::DOUBLE:
        return elementsOf<double>(values);
    case onnx::TensorProto::FLOAT16:
        return elementsOf<Ort::Float16_t>(values);
    case onnx::TensorProto::INT32:
        return elementsOf<std::int32_t>(values);
    case onnx::TensorProto::INT64:
        return elementsOf<std::int64_t>(values);
    case onnx::TensorProto::UINT8:
        return elementsOf<std::uint8_t>(values);
    case onnx::TensorProto::INT8:
        return elementsOf<std::int8_t>(values);
    case onnx::TensorProto::BOOL:
        return elementsOf<bool>(values);
    default: // no type that an encoder takes its inputs in
        return {};
    }
}

} // namespace

Tensor Tensor::of(int type, std::vector<std::int64_t> shape, const std::vector<double> &values)
{
    return {.type = type, .shape = std::move(shape), .bytes = elementsOf(type, values)};
}

GraphRun::GraphRun(std::unique_ptr<Ort::Session> session)
    : m_session(std::move(session))
{
    Ort::AllocatorWithDefaultOptions allocator;
    for (size_t index = 0; index < m_session->GetInputCount(); ++index)
        m_inputs.push_back(formOf(m_session->GetInputNameAllocated(index, allocator).get(),
                                  m_session->GetInputTypeInfo(index)));
    for (size_t index = 0; index < m_session->GetOutputCount(); ++index)
        m_outputs.push_back(formOf(m_session->GetOutputNameAllocated(index, allocator).get(),
                                   m_session->GetOutputTypeInfo(index)));
}

GraphRun::GraphRun(GraphRun &&) noexcept = default;
GraphRun &GraphRun::operator=(GraphRun &&) noexcept = default;
GraphRun::~GraphRun() = default;

Outcome<GraphRun> GraphRun::open(const QString &path)
{
    QString error;
    const OnnxRuntime *runtime = OnnxRuntime::shared(&error);
    if (!runtime)
        return notLoaded(path, error);
    try {
        return GraphRun(std::make_unique<Ort::Session>(
            runtime->environment(), QFile::encodeName(path).constData(), sessionOptions()));
    } catch (const std::exception &exception) {
        return notLoaded(path, QString::fromUtf8(exception.what()));
    }
}

Outcome<GraphRun> GraphRun::fromBytes(const std::string &bytes)
{
    QString error;
    const OnnxRuntime *runtime = OnnxRuntime::shared(&error);
    if (!runtime)
        return notLoaded(QStringLiteral("memory"), error);
    try {
        return GraphRun(std::make_unique<Ort::Session>(runtime->environment(), bytes.data(), bytes.size(),
                                                       sessionOptions()));
    } catch (const std::exception &exception) {
        return notLoaded(QStringLiteral("memory"), QString::fromUtf8(exception.what()));
    }
}

Outcome<RunResult> GraphRun::run(const QHash<QString, Tensor> &inputs, const std::string &output)
{
    const auto failed = [&output](const QString &reason) {
        return problem(QStringLiteral("numbers in the output \"%1\"").arg(QString::fromStdString(output)),
                       reason, QStringLiteral("export the model again, or use another export of it"));
    };
    try {
        const auto memory = Ort::MemoryInfo::CreateCpu(OrtArenaAllocator, OrtMemTypeDefault);
        std::vector<std::string> names;
        std::vector<Ort::Value> values;
        for (auto input = inputs.begin(); input != inputs.end(); ++input) {
            names.push_back(input.key().toStdString());
            const Tensor &tensor = input.value();
            // The runtime only reads its inputs.
            values.push_back(Ort::Value::CreateTensor(memory, const_cast<std::byte *>(tensor.bytes.data()),
                                                      tensor.bytes.size(), tensor.shape.data(),
                                                      tensor.shape.size(),
                                                      static_cast<ONNXTensorElementDataType>(tensor.type)));
        }
        std::vector<const char *> namePointers;
        for (const std::string &name : names)
            namePointers.push_back(name.c_str());
        const char *outputName = output.c_str();
        const auto results = m_session->Run(Ort::RunOptions{nullptr}, namePointers.data(), values.data(),
                                            values.size(), &outputName, 1);
        if (auto floats = flattened(results.front()))
            return RunResult{*std::move(floats), results.front().GetTensorTypeAndShapeInfo().GetShape()};
        return failed(QStringLiteral("something that is no tensor of numbers"));
    } catch (const std::exception &exception) {
        return failed(QString::fromUtf8(exception.what()));
    }
}

} // namespace Qorvane::Encoders
