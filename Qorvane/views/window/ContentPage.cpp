#include "views/window/ContentPage.h"

namespace Qorvane::ContentPage {

namespace {

Page searchPage(const ContentPageInput &input)
{
    if (input.isSearching)
        return Searching;
    return input.hasResults ? Results : NoResults;
}

} // namespace

Page pageFor(const ContentPageInput &input)
{
    if (!input.showNormalPhotos)
        return searchPage(input);
    if (input.isLoading)
        return Loading;
    if (input.scope != ShownScope::Kind::nothing && input.hasImages)
        return Photos;
    switch (input.scope) {
    case ShownScope::Kind::tag:
        return EmptyTag;
    case ShownScope::Kind::rating:
        return EmptyRating;
    case ShownScope::Kind::folder:
        return EmptyFolder;
    case ShownScope::Kind::nothing:
        break;
    }
    return NothingSelected;
}

} // namespace Qorvane::ContentPage
