#pragma once

#include <onnxruntime_cxx_api.h>

#include <optional>
#include <vector>

namespace Qorvane {

/// The elements of `value` in memory order as 32-bit floats, whatever its shape and number type. Nothing when
/// it is no tensor of numbers.
std::optional<std::vector<float>> flattened(const Ort::Value &value);

} // namespace Qorvane
