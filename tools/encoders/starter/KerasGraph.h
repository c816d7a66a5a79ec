#pragma once

#include "encoders/graph/GraphBuilder.h"
#include "encoders/starter/KerasModel.h"

namespace Qorvane::Encoders {

/// Turns a Keras network over pictures into ONNX nodes, layer by layer. What was channels last becomes
/// channels first; a batch normalisation behind a convolution disappears in its weights. Knows the kinds of
/// layers of residual networks: InputLayer, ZeroPadding2D, Conv2D, BatchNormalization, Activation,
/// MaxPooling2D, Add, GlobalAveragePooling2D and Dense.
class KerasGraph
{
public:
    /// Both must outlive this.
    KerasGraph(const KerasModel &model, GraphBuilder &builder);

    /// Adds the layers up to and including `lastLayer`, all of them when that is empty, for the tensor
    /// `input` (1 x channels x height x width). Gives the name of the last one's output.
    Outcome<std::string> append(const std::string &input, const QString &lastLayer = {});

private:
    using Layer = KerasModel::Layer;

    Outcome<std::string> node(const Layer &layer, const std::string &input);
    Outcome<std::string> zeroPadding(const Layer &layer);
    Outcome<std::string> convolution(const Layer &layer);
    Outcome<std::string> batchNormalization(const Layer &layer);
    Outcome<std::string> maxPooling(const Layer &layer);
    Outcome<std::string> dense(const Layer &layer);
    Outcome<std::string> activated(const Layer &layer, const std::string &tensor);

    /// The batch normalisation that `convolution` can take in; nullptr when there is none.
    const Layer *foldable(const Layer &convolution) const;
    const std::string &inputOf(const Layer &layer, qsizetype index = 0) const;

    const KerasModel &m_model;
    GraphBuilder &m_builder;
    std::map<QString, std::string> m_outputs;
};

} // namespace Qorvane::Encoders
