#pragma once

#include "semantic/ImageFeature.h"
#include "semantic/SearchResult.h"

#include <QList>

#include <vector>

namespace Qorvane {

/// The part of the in-memory search behind the text's features, with all that it says about its pictures and
/// results. A picture whose vector has another length than `textVector` counts with similarity 0. Quadratic
/// in the number of pictures; any thread but the GUI's.
QList<SearchResult> searchInMemory(const ImageFeatures &features, const std::vector<float> &textVector,
                                   int limit, float logitScale);

} // namespace Qorvane
