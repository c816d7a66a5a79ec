#include "views/window/Sorting.h"

#include "library/QorManage.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

class SortingTest : public testing::Test
{
protected:
    ~SortingTest() override { drainMainQueue(); }

    const LogCapture log;
    QorManage library;
    Sorting sorting{library};
};

} // namespace

TEST_F(SortingTest, beginsWithTheLibrarysSettings)
{
    EXPECT_EQ(sorting.criterion(), Sorting::FileName);
    EXPECT_EQ(sorting.order(), Sorting::Ascending);
}

TEST_F(SortingTest, setsWhatTheLibrarySortsBy)
{
    const QSignalSpy criteria(&sorting, &Sorting::criterionChanged);
    const QSignalSpy orders(&sorting, &Sorting::orderChanged);
    for (const auto &[criterion, expected] :
         {std::pair(Sorting::CreationDate, SortCriterion::creationDate),
          std::pair(Sorting::ModificationDate, SortCriterion::modificationDate),
          std::pair(Sorting::Rating, SortCriterion::rating),
          std::pair(Sorting::FileName, SortCriterion::filename)}) {
        sorting.setCriterion(criterion);
        EXPECT_EQ(library.sortCriterion(), expected);
        EXPECT_EQ(sorting.criterion(), criterion);
    }
    sorting.setOrder(Sorting::Descending);
    EXPECT_EQ(library.sortOrder(), SortOrder::descending);
    EXPECT_EQ(criteria.count(), 4);
    EXPECT_EQ(orders.count(), 1);
}

TEST_F(SortingTest, whatIsChosenAlreadyIsNotWrittenAgain)
{
    const QSignalSpy criteria(&library, &QorManage::sortCriterionChanged);
    const QSignalSpy orders(&library, &QorManage::sortOrderChanged);
    sorting.setCriterion(Sorting::FileName);
    sorting.setOrder(Sorting::Ascending);
    EXPECT_EQ(criteria.count(), 0);
    EXPECT_EQ(orders.count(), 0);
}

TEST_F(SortingTest, followsTheLibrary)
{
    library.setSortCriterion(SortCriterion::rating);
    EXPECT_EQ(sorting.criterion(), Sorting::Rating);
}
