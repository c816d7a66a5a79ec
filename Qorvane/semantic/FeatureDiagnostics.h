#pragma once

#include "semantic/ImageFeature.h"

#include <QStringList>

namespace Qorvane {

/// What the in-memory search tells of its pictures' vectors: whether they all are the same, how far any two
/// differ, and the first few. Quadratic in their number; for fewer than two there is nothing to compare and
/// no line. Any thread but the GUI's.
QStringList featureDiagnostics(const ImageFeatures &features);

} // namespace Qorvane
