#pragma once

#include <QString>

#include <tl/expected.hpp>
#include <utility>

namespace Qorvane::Encoders {

/// Why something couldn't be done, in the three sentences that help: each without a full stop at its end.
struct Problem
{
    QString expected; ///< what was needed: "a vision graph with one picture input"
    QString found;    ///< what was there instead: "visual.onnx takes 2 inputs: a, b"
    QString remedy;   ///< what to do about it: "export the image tower alone"

    /// All three as one paragraph.
    QString text() const { return QStringLiteral("expected %1; found %2; %3").arg(expected, found, remedy); }

    friend bool operator==(const Problem &, const Problem &) = default;
};

/// The result of an operation that can fail for reasons that the user can do something about.
template <typename Value>
using Outcome = tl::expected<Value, Problem>;

/// A failed `Outcome` of any type.
inline tl::unexpected<Problem> problem(QString expected, QString found, QString remedy)
{
    return tl::unexpected<Problem>(Problem{std::move(expected), std::move(found), std::move(remedy)});
}

} // namespace Qorvane::Encoders
