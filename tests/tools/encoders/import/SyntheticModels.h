#pragma once

#include "encoders/graph/GraphBuilder.h"

#include <QByteArray>
#include <QString>

#include <string>

/// Small models with random weights in every form that published ones have. Their vectors depend on every
/// pixel and its place, and on tokens, their order, the mask and the end token.
namespace Qorvane::Encoders::Synthetic {

enum class Precision { fp32, fp16, int8 };

struct VisionSpec
{
    std::string input = "pixel_values";
    std::string output = "image_embeds";
    int side = 224;
    int batch = -1;
    bool isSideOpen = false;
    bool isChannelsLast = false;
    bool isNormalised = false;
    bool has16BitTensors = false; ///< input and output too, in fp16
    Precision precision = Precision::fp32;
    int dimension = 24;
};

struct TextSpec
{
    std::string ids = "input_ids";
    std::string mask; ///< without a name there is none, as for token types and positions
    std::string tokenTypes;
    std::string positions;
    std::string output = "text_embeds";
    int type = onnx::TensorProto::INT64;
    int batch = -1;
    int context = 77;
    bool isContextOpen = false;
    bool isMaskedMean = false; ///< as BERT's kin pool, else the place of the greatest token as CLIP does
    /// As Chinese-CLIP's own exports pool: the first place, which sees all that aren't the padding token 0.
    bool isFirstOfNonZero = false;
    bool isNormalised = false;
    Precision precision = Precision::fp32;
    int vocabularySize = 49408;
    int dimension = 24;
};

/// Adds a tower with its inputs and output.
void addVision(GraphBuilder &builder, onnx::GraphProto &graph, const VisionSpec &spec);
void addText(GraphBuilder &builder, onnx::GraphProto &graph, const TextSpec &spec);

onnx::ModelProto visionModel(const VisionSpec &spec);
onnx::ModelProto textModel(const TextSpec &spec);
/// Both towers, and two logits that need both, as the joint exports have them. A constant, its shape and what
/// is made of these belong to both.
onnx::ModelProto jointModel(const VisionSpec &vision, const TextSpec &text);

/// Writes a file, and the folders above it.
void writeFile(const QString &path, const QByteArray &bytes);
void writeModel(const QString &path, const onnx::ModelProto &model);
/// The same with the weights in the file `location` beside it.
void writeModelWithWeightsBeside(const QString &path, onnx::ModelProto model, const QString &location);

/// Vocabularies with the special tokens of each family at their own ids, and a few words.
QByteArray openaiVocabulary();
QByteArray chineseVocabularyLines();

} // namespace Qorvane::Encoders::Synthetic
