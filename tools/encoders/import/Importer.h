#pragma once

#include "encoders/Problem.h"
#include "encoders/graph/OnnxGraph.h"
#include "encoders/import/SelfTest.h"
#include "encoders/layout/PublishedVocabulary.h"

#include <QStringList>

#include <functional>
#include <optional>

namespace Qorvane::Encoders {

/// What is to be imported, and where to.
struct ImportRequest
{
    QStringList paths;            ///< folders and files of one model
    std::optional<Family> family; ///< told by the user; otherwise the vocabulary tells
    QString destination;
    /// Where a vocabulary of the right family is looked for when the model has none.
    QStringList vocabularyFolders;
    /// Above this, weights go into a file of their own.
    qint64 singleFile = OnnxGraph::greatestSingleFile;
};

/// What was done, in plain words, a line each.
struct ImportReport
{
    Family family = Family::openai;
    QStringList recognised;
    QStringList adapted;
    QStringList missing; ///< what the user should know or do
    SelfTestReport selfTest;
};

/// How far an import has come, from 0 to 1, and what it is at.
using ImportProgress = std::function<void(double fraction, const QString &activity)>;

/// Recognises a published model, adapts its graphs to the application's tensors, tries them, and installs
/// them under the names that the application looks for. On failure the old set is in its place, or lies where
/// the problem says and comes back with the next import; see `EncoderInstall`. A damaged model may end the
/// process or never come to an end: see `doneApart`. Takes seconds to minutes. Any thread; `progress` is
/// called on it.
Outcome<ImportReport> importEncoders(const ImportRequest &request, const ImportProgress &progress);

} // namespace Qorvane::Encoders
