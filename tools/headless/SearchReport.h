#pragma once

#include "semantic/SearchResult.h"

#include <QList>
#include <QString>

namespace Qorvane {

/// "similarity 0.314  probability 0.520" of a hit, as lists and captions show it.
QString scoreText(const SearchResult &result);

/// The hits as lines of text, best first: rank, similarity, probability, path. One line that says so when
/// there are none.
QString searchReport(const QString &query, const QList<SearchResult> &results);

} // namespace Qorvane
