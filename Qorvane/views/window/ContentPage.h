#pragma once

#include "views/window/ShownScope.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

/// What the middle column reads to know what to show.
struct ContentPageInput
{
    bool showNormalPhotos = true; ///< the search field is empty
    bool isSearching = false;
    bool hasResults = false;
    bool isLoading = false;
    ShownScope::Kind scope = ShownScope::Kind::nothing;
    bool hasImages = false;
};

/// The pages of the middle column.
namespace ContentPage {
Q_NAMESPACE
QML_ELEMENT

enum Page {
    Loading,
    Photos,
    EmptyTag,
    EmptyRating,
    EmptyFolder,
    NothingSelected,
    Searching,
    NoResults,
    Results,
};
Q_ENUM_NS(Page)

/// The page for `input`. While a search runs it hides the results of the one before.
Page pageFor(const ContentPageInput &input);

} // namespace ContentPage

} // namespace Qorvane
