#include "library/SortCriterion.h"

namespace Qorvane {

QString rawValue(SortCriterion criterion)
{
    switch (criterion) {
    case SortCriterion::filename:
        return QStringLiteral("File Name");
    case SortCriterion::creationDate:
        return QStringLiteral("Creation Date");
    case SortCriterion::modificationDate:
        return QStringLiteral("Modification Date");
    case SortCriterion::rating:
        return QStringLiteral("Rating");
    }
    return {};
}

QString rawValue(SortOrder order)
{
    switch (order) {
    case SortOrder::ascending:
        return QStringLiteral("Ascending");
    case SortOrder::descending:
        return QStringLiteral("Descending");
    }
    return {};
}

} // namespace Qorvane
