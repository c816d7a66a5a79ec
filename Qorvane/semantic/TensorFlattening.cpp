#include "semantic/TensorFlattening.h"

#include <algorithm>

namespace Qorvane {

namespace {

template <typename Element>
std::vector<float> converted(const Ort::Value &value, size_t count)
{
    const auto *elements = value.GetTensorData<Element>();
    std::vector<float> floats(count);
    std::transform(elements, elements + count, floats.begin(), [](const Element &element) {
        if constexpr (requires { element.ToFloat(); })
            return element.ToFloat();
        else
            return static_cast<float>(element);
    });
    return floats;
}

} // namespace

std::optional<std::vector<float>> flattened(const Ort::Value &value)
{
    if (!value.IsTensor())
        return std::nullopt;
    const auto information = value.GetTensorTypeAndShapeInfo();
    const size_t count = information.GetElementCount();
    switch (information.GetElementType()) {
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_FLOAT:
        return converted<float>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_DOUBLE:
        return converted<double>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_FLOAT16:
        return converted<Ort::Float16_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_BFLOAT16:
        return converted<Ort::BFloat16_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_INT8:
        return converted<int8_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_INT16:
        return converted<int16_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_INT32:
        return converted<int32_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_INT64:
        return converted<int64_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_UINT8:
        return converted<uint8_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_UINT16:
        return converted<uint16_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_UINT32:
        return converted<uint32_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_UINT64:
        return converted<uint64_t>(value, count);
    case ONNX_TENSOR_ELEMENT_DATA_TYPE_BOOL:
        return converted<bool>(value, count);
    default: // text, complex and packed types, and whatever a later release adds: no plain numbers
        return std::nullopt;
    }
}

} // namespace Qorvane
