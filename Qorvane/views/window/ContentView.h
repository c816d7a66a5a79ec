#pragma once

#include "ChineseClipService.h"
#include "EmbeddingResponder.h"
#include "views/window/ContentViewState.h"

#include <QObject>
#include <QQmlEngine>

#include <memory>

class QQuickWindow;

namespace Qorvane {

class QorManage;
class PictureQueue;

/// The main window with what lives and dies with it: the semantic service and its answers to the pipeline,
/// the shared state of the columns, the engine that draws them. GUI thread.
class ContentView : public QObject
{
    Q_OBJECT

public:
    /// `qorManager` outlives this object. Nothing shows yet.
    explicit ContentView(QorManage &qorManager, QObject *parent = nullptr);
    ~ContentView() override;

    /// Shows the window and brings it to the front; false, with the reason on the console, when it can't be
    /// made.
    bool show();
    /// Whether the window is open, minimised or covered too.
    bool isShown() const;

    /// Nothing before the first `show`.
    QQuickWindow *window() const { return m_window.get(); }
    ChineseClipService &clipService() { return m_clipService; }
    ContentViewState &state() { return m_state; }

Q_SIGNALS:
    /// The window's first frame is on screen. Once.
    void appeared();
    /// The user closed the window.
    void closed();

private:
    void appear();

    ChineseClipService m_clipService;
    EmbeddingResponder m_responder;
    std::shared_ptr<PictureQueue> m_thumbnails;
    ContentViewState m_state;
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window; // last: it is drawn from all of the above
};

} // namespace Qorvane
