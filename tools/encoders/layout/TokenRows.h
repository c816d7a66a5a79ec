#pragma once

#include <onnx/onnx_pb.h>

#include <cstdint>
#include <optional>
#include <string>

namespace Qorvane::Encoders {

/// How many tokens a text graph knows: the rows of the constant table that it looks its input `ids` up in.
/// Nothing when no such table is found. Any thread.
std::optional<std::int64_t> tokenRows(const onnx::GraphProto &graph, const std::string &ids);

} // namespace Qorvane::Encoders
