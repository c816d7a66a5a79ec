#pragma once

#include "encoders/Problem.h"
#include "encoders/graph/GraphRun.h"
#include "encoders/graph/OnnxGraph.h"

#include <QStringList>

namespace Qorvane::Encoders {

/// A model's two halves, each in a graph of its own.
struct Towers
{
    OnnxGraph vision;
    OnnxGraph text;
    ValueForm visionOutput;
    ValueForm textOutput;
    bool isCut = false;     ///< both came out of one graph
    QStringList passedOver; ///< names of files that weren't used
};

/// The towers among these files, by what the graphs say of themselves: of a model in several precisions the
/// most precise one that is complete, and separate towers before a graph that holds both. Files of the
/// precision that is looked at must be readable. Slow: reads whole models. Any thread.
Outcome<Towers> findTowers(const QStringList &graphs);

} // namespace Qorvane::Encoders
