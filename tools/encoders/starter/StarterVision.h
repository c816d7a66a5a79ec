#pragma once

#include "encoders/starter/KerasModel.h"

#include <onnx/onnx_pb.h>

namespace Qorvane::Encoders {

/// A vision encoder in the application's form, around a classifier that ends in GlobalAveragePooling2D and
/// Dense and takes pictures as the networks of He et al. (2015) do: blue, green, red, from 0 to 255, less the
/// training pictures' mean. The vectors lie in the `LabelSpace`.
Outcome<onnx::ModelProto> starterVision(const KerasModel &classifier);

} // namespace Qorvane::Encoders
