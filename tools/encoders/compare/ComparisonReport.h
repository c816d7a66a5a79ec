#pragma once

#include "encoders/compare/Comparison.h"

#include <QByteArray>
#include <QStringList>

namespace Qorvane::Encoders {

/// The result in lines for a reader; scores that no picture entered say so.
QStringList comparisonLines(const ComparisonResult &result);

/// The result with each category, for scripts: an indented JSON object.
QByteArray comparisonJson(const ComparisonResult &result);

} // namespace Qorvane::Encoders
