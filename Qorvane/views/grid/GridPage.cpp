#include "views/grid/GridPage.h"

namespace Qorvane::GridPage {

namespace {

Page searchPage(const GridPageInput &input)
{
    if (input.isSearching)
        return Searching;
    return input.hasResults ? Results : NoResults;
}

} // namespace

Page pageFor(const GridPageInput &input)
{
    if (!input.showNormalPhotos)
        return searchPage(input);
    if (input.isLoading)
        return Loading;
    if (input.hasTag)
        return input.hasImages ? Photos : EmptyTag;
    if (input.hasRating)
        return input.hasImages ? Photos : EmptyRating;
    if (input.hasFolder)
        return input.hasImages ? Photos : EmptyFolder;
    return NothingSelected;
}

} // namespace Qorvane::GridPage
