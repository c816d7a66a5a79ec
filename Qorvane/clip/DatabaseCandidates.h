#pragma once

#include "platform/FileUrl.h"
#include "semantic/SearchCandidates.h"

#include <QList>

#include <vector>

namespace Qorvane {

/// The images of the store that a search compares, each with its similarity to `textVector`, in the order the
/// store gives them: those of `scope`, or all when it is empty. Images whose vector has another length are
/// left out, as they belong to another family of encoders. Logs how many rows there were. Reads the store;
/// any thread but the GUI's.
SearchCandidates databaseCandidates(const QList<FileUrl> &scope, const std::vector<float> &textVector);

} // namespace Qorvane
