#pragma once

#include "encoders/Problem.h"
#include "encoders/starter/LabelSpace.h"
#include "encoders/starter/WordTable.h"

#include <QByteArray>
#include <QStringList>

#include <onnx/onnx_pb.h>

#include <string>

namespace Qorvane::Encoders {

/// A sentence encoder of the BERT kind in the application's form: it takes the application's token ids, and
/// gives either the sentence's own vector or its place in the `LabelSpace`, as "text_features".
class StarterText
{
public:
    /// An English encoder, `onnx`, that takes WordPiece ids, while the application sends byte-pair ones:
    /// `tokens` and `words` turn one into the other. `marks`: its pieces for beginning and end. The
    /// sentence's vector is the mean of its tokens'.
    static Outcome<StarterText> english(const QByteArray &onnx, const TokenTable &tokens,
                                        const WordTable &words, const WordPiece &marks);

    /// A Chinese encoder, whose ids the application sends. The sentence's vector is that of its first token.
    static Outcome<StarterText> chinese(const QByteArray &onnx, const QStringList &vocabulary);

    /// Gives the sentence's vector as it is, for the texts of the labels.
    onnx::ModelProto sentenceEncoder() const;
    /// Gives the place in the label space.
    onnx::ModelProto textEncoder(const LabelSpace::Rows &labels) const;

private:
    StarterText(onnx::ModelProto model, std::string sentence);

    onnx::ModelProto m_model; ///< without an output
    std::string m_sentence;
};

} // namespace Qorvane::Encoders
