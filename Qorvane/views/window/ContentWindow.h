#pragma once

#include <memory>

class QQmlEngine;
class QQuickWindow;

namespace Qorvane {

class ContentViewState;
class ThumbnailProvider;

/// Makes `engine` able to show the views: module paths and image providers. Takes `thumbnails` over.
void setUpEngine(QQmlEngine &engine, std::unique_ptr<ThumbnailProvider> thumbnails);

/// The main window over `state`, not shown yet. Both `engine` and `state` outlive it. Nothing, with the
/// reason on the console, when the window can't be made.
std::unique_ptr<QQuickWindow> makeContentWindow(QQmlEngine &engine, ContentViewState &state);

} // namespace Qorvane
