#include "views/window/ContentPage.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(ContentPage, showsProgressWhileAListLoadsWhateverIsSelected)
{
    EXPECT_EQ(ContentPage::pageFor({.isLoading = true, .scope = ShownScope::Kind::folder, .hasImages = true}),
              ContentPage::Loading);
}

TEST(ContentPage, saysOfWhatThereIsNothing)
{
    EXPECT_EQ(ContentPage::pageFor({.scope = ShownScope::Kind::tag}), ContentPage::EmptyTag);
    EXPECT_EQ(ContentPage::pageFor({.scope = ShownScope::Kind::rating}), ContentPage::EmptyRating);
    EXPECT_EQ(ContentPage::pageFor({.scope = ShownScope::Kind::folder}), ContentPage::EmptyFolder);
    EXPECT_EQ(ContentPage::pageFor({}), ContentPage::NothingSelected);
}

TEST(ContentPage, showsTheGridOfAnythingSelectedThatHasMedia)
{
    EXPECT_EQ(ContentPage::pageFor({.scope = ShownScope::Kind::tag, .hasImages = true}), ContentPage::Photos);
    EXPECT_EQ(ContentPage::pageFor({.scope = ShownScope::Kind::rating, .hasImages = true}),
              ContentPage::Photos);
    EXPECT_EQ(ContentPage::pageFor({.scope = ShownScope::Kind::folder, .hasImages = true}),
              ContentPage::Photos);
}

TEST(ContentPage, hidesMediaThatNothingIsSelectedFor)
{
    EXPECT_EQ(ContentPage::pageFor({.hasImages = true}), ContentPage::NothingSelected);
}

TEST(ContentPage, aRunningSearchHidesTheResultsBefore)
{
    EXPECT_EQ(ContentPage::pageFor({.showNormalPhotos = false, .isSearching = true, .hasResults = true}),
              ContentPage::Searching);
}

TEST(ContentPage, aFinishedSearchShowsItsResultsOrSaysThatThereAreNone)
{
    EXPECT_EQ(ContentPage::pageFor({.showNormalPhotos = false, .hasResults = true}), ContentPage::Results);
    EXPECT_EQ(ContentPage::pageFor(
                  {.showNormalPhotos = false, .scope = ShownScope::Kind::folder, .hasImages = true}),
              ContentPage::NoResults);
}

TEST(ContentPage, anEmptyFieldBringsTheGridBackEvenWhileASearchRuns)
{
    EXPECT_EQ(
        ContentPage::pageFor(
            {.isSearching = true, .hasResults = true, .scope = ShownScope::Kind::folder, .hasImages = true}),
        ContentPage::Photos);
}
