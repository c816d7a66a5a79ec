#include "views/grid/GridPage.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(GridPage, showsProgressWhileAListLoadsWhateverIsSelected)
{
    EXPECT_EQ(GridPage::pageFor({.isLoading = true, .scope = ShownScope::Kind::folder, .hasImages = true}),
              GridPage::Loading);
}

TEST(GridPage, saysOfWhatThereIsNothing)
{
    EXPECT_EQ(GridPage::pageFor({.scope = ShownScope::Kind::tag}), GridPage::EmptyTag);
    EXPECT_EQ(GridPage::pageFor({.scope = ShownScope::Kind::rating}), GridPage::EmptyRating);
    EXPECT_EQ(GridPage::pageFor({.scope = ShownScope::Kind::folder}), GridPage::EmptyFolder);
    EXPECT_EQ(GridPage::pageFor({}), GridPage::NothingSelected);
}

TEST(GridPage, showsTheGridOfAnythingSelectedThatHasMedia)
{
    EXPECT_EQ(GridPage::pageFor({.scope = ShownScope::Kind::tag, .hasImages = true}), GridPage::Photos);
    EXPECT_EQ(GridPage::pageFor({.scope = ShownScope::Kind::rating, .hasImages = true}), GridPage::Photos);
    EXPECT_EQ(GridPage::pageFor({.scope = ShownScope::Kind::folder, .hasImages = true}), GridPage::Photos);
}

TEST(GridPage, hidesMediaThatNothingIsSelectedFor)
{
    EXPECT_EQ(GridPage::pageFor({.hasImages = true}), GridPage::NothingSelected);
}

TEST(GridPage, aRunningSearchHidesTheResultsBefore)
{
    EXPECT_EQ(GridPage::pageFor({.showNormalPhotos = false, .isSearching = true, .hasResults = true}),
              GridPage::Searching);
}

TEST(GridPage, aFinishedSearchShowsItsResultsOrSaysThatThereAreNone)
{
    EXPECT_EQ(GridPage::pageFor({.showNormalPhotos = false, .hasResults = true}), GridPage::Results);
    EXPECT_EQ(
        GridPage::pageFor({.showNormalPhotos = false, .scope = ShownScope::Kind::folder, .hasImages = true}),
        GridPage::NoResults);
}

TEST(GridPage, anEmptyFieldBringsTheGridBackEvenWhileASearchRuns)
{
    EXPECT_EQ(
        GridPage::pageFor(
            {.isSearching = true, .hasResults = true, .scope = ShownScope::Kind::folder, .hasImages = true}),
        GridPage::Photos);
}
