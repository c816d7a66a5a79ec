#pragma once

#include "encoders/Problem.h"
#include "encoders/starter/LabelSpace.h"

#include <QByteArray>
#include <QStringList>

#include <onnx/onnx_pb.h>

#include <functional>

namespace Qorvane::Encoders {

/// What labels are called, in one language, and how much the second counts.
struct LabelWording
{
    QStringList names;
    QStringList phrases;
    float phraseShare = 0;
};

/// Encodes the texts as the application would: with its tokenizer over `vocabulary` (the JSON file), and
/// `sentenceEncoder`. Each label's vector is the mix of its two. `report` from 0 to 1. Takes ten seconds and
/// more.
Outcome<LabelSpace::Rows> encodedLabels(const onnx::ModelProto &sentenceEncoder, const QByteArray &vocabulary,
                                        const LabelWording &wording,
                                        const std::function<void(double)> &report);

} // namespace Qorvane::Encoders
