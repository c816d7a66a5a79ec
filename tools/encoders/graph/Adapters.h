#pragma once

#include "encoders/Problem.h"
#include "encoders/graph/Resampling.h"

#include <QStringList>

#include <onnx/onnx_pb.h>

#include <array>
#include <optional>
#include <string>

namespace Qorvane::Encoders {

/// What a vision graph takes and gives, as it was published.
struct VisionForm
{
    std::string input;  ///< rank 4, 32 or 16-bit floats
    std::string output; ///< one vector
    int inputType = onnx::TensorProto::FLOAT;
    int outputType = onnx::TensorProto::FLOAT;
    int height = 224;
    int width = 224;
    bool isChannelsLast = false; ///< 1 x height x width x 3, not 1 x 3 x height x width
    bool isBlueFirst = false;
    ResamplingFilter filter = ResamplingFilter::bicubic;
    /// What the graph wants of a colour from 0 to 1: (colour * scale - mean) / deviation.
    double scale = 1;
    std::array<double, 3> mean{0.48145466, 0.4578275, 0.40821073};
    std::array<double, 3> deviation{0.26862954, 0.26130258, 0.27577711};
    int dimension = -1; ///< length of the vector; -1 when unknown
};

/// What a text graph takes and gives, as it was published. A tensor that it doesn't take has no name.
struct TextForm
{
    std::string ids; ///< rank 2, 32 or 64-bit integers
    std::string mask;
    std::string tokenTypes;
    std::string positions;
    std::string output; ///< one vector
    int idsType = onnx::TensorProto::INT64;
    int maskType = onnx::TensorProto::INT64;
    int tokenTypesType = onnx::TensorProto::INT64;
    int positionsType = onnx::TensorProto::INT64;
    int outputType = onnx::TensorProto::FLOAT;
    int context = 77; ///< tokens that it takes
    int endToken = 49407;
    int padToken = 0;
    int dimension = -1; ///< length of the vector; -1 when unknown
};

/// Makes of a published graph one that takes and gives what the application's encoders do: the tensors
/// "pixel_values" and "image_features", or "input_ids", "attention_mask" and "text_features", in the types
/// and shapes that `VisionEncoder` and `TextEncoder` say. The graph must have no other inputs than the form
/// names, and no other output. They give what was added, in plain words. Any thread.
QStringList adaptVision(onnx::ModelProto &model, const VisionForm &form);
QStringList adaptText(onnx::ModelProto &model, const TextForm &form);

/// Whether the model has been adapted before. A second time would turn its pictures over again.
bool isAdapted(const onnx::ModelProto &model);

} // namespace Qorvane::Encoders
