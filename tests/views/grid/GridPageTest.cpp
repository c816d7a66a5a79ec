#include "views/grid/GridPage.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(GridPage, showsProgressWhileAListLoadsWhateverIsSelected)
{
    EXPECT_EQ(GridPage::pageFor({.isLoading = true, .hasFolder = true, .hasImages = true}),
              GridPage::Loading);
}

TEST(GridPage, asksForTheTagBeforeTheRatingBeforeTheFolder)
{
    EXPECT_EQ(GridPage::pageFor({.hasTag = true, .hasRating = true, .hasFolder = true}), GridPage::EmptyTag);
    EXPECT_EQ(GridPage::pageFor({.hasRating = true, .hasFolder = true}), GridPage::EmptyRating);
    EXPECT_EQ(GridPage::pageFor({.hasFolder = true}), GridPage::EmptyFolder);
    EXPECT_EQ(GridPage::pageFor({}), GridPage::NothingSelected);
}

TEST(GridPage, showsTheGridOfAnythingSelectedThatHasMedia)
{
    EXPECT_EQ(GridPage::pageFor({.hasTag = true, .hasImages = true}), GridPage::Photos);
    EXPECT_EQ(GridPage::pageFor({.hasRating = true, .hasImages = true}), GridPage::Photos);
    EXPECT_EQ(GridPage::pageFor({.hasFolder = true, .hasImages = true}), GridPage::Photos);
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
    EXPECT_EQ(GridPage::pageFor({.showNormalPhotos = false, .hasFolder = true, .hasImages = true}),
              GridPage::NoResults);
}

TEST(GridPage, anEmptyFieldBringsTheGridBackEvenWhileASearchRuns)
{
    EXPECT_EQ(
        GridPage::pageFor({.isSearching = true, .hasResults = true, .hasFolder = true, .hasImages = true}),
        GridPage::Photos);
}
