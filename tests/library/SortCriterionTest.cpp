#include "library/SortCriterion.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(SortCriterion, casesStandInTheOrderOfTheMenuUnderItsLabels)
{
    QStringList labels;
    for (const SortCriterion criterion : allSortCriteria)
        labels.append(rawValue(criterion));
    EXPECT_EQ(labels, (QStringList{QStringLiteral("File Name"), QStringLiteral("Creation Date"),
                                   QStringLiteral("Modification Date"), QStringLiteral("Rating")}));
}

TEST(SortOrder, casesStandInTheOrderOfTheMenuUnderTheirLabels)
{
    QStringList labels;
    for (const SortOrder order : allSortOrders)
        labels.append(rawValue(order));
    EXPECT_EQ(labels, (QStringList{QStringLiteral("Ascending"), QStringLiteral("Descending")}));
}

TEST(SortSettings, beginWithNamesAscending)
{
    EXPECT_EQ(SortSettings(), (SortSettings{SortCriterion::filename, SortOrder::ascending}));
}
