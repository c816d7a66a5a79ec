#pragma once

#include <QMetaType>
#include <QString>

#include <array>

namespace Qorvane {

/// What the list of media is sorted by.
enum class SortCriterion { filename, creationDate, modificationDate, rating };

/// Which end of the list comes first.
enum class SortOrder { ascending, descending };

/// All cases in the order of the sort menu.
inline constexpr std::array allSortCriteria{SortCriterion::filename, SortCriterion::creationDate,
                                            SortCriterion::modificationDate, SortCriterion::rating};
inline constexpr std::array allSortOrders{SortOrder::ascending, SortOrder::descending};

struct SortSettings
{
    SortCriterion criterion = SortCriterion::filename;
    SortOrder order = SortOrder::ascending;

    friend bool operator==(const SortSettings &, const SortSettings &) = default;
};

/// "File Name", "Creation Date", ...; doubles as the label of the sort menu.
QString rawValue(SortCriterion criterion);
/// "Ascending", "Descending".
QString rawValue(SortOrder order);

} // namespace Qorvane

Q_DECLARE_METATYPE(Qorvane::SortCriterion)
Q_DECLARE_METATYPE(Qorvane::SortOrder)
