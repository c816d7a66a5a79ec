#include "views/window/ContentView.h"

#include "views/pictures/PictureQueue.h"
#include "views/pictures/ThumbnailProvider.h"
#include "views/window/ContentWindow.h"

#include <QCoreApplication>
#include <QQuickWindow>
#include <QThread>

#include <algorithm>

namespace Qorvane {

namespace {

// Half the cores: the pipeline and the encoders want theirs while a grid fills.
int thumbnailThreads()
{
    return std::max(2, QThread::idealThreadCount() / 2);
}

} // namespace

ContentView::ContentView(QorManage &qorManager, QObject *parent)
    : QObject(parent)
    , m_responder(m_clipService)
    , m_thumbnails(std::make_shared<PictureQueue>(thumbnailThreads()))
    , m_state(
          qorManager,
          [this](const QString &text, const QList<FileUrl> &scope, int limit) {
              return m_clipService.searchWithDatabase(text, scope, limit);
          },
          m_thumbnails)
{
    setUpEngine(m_engine, std::make_unique<ThumbnailProvider>(m_thumbnails));
    connect(&m_engine, &QQmlEngine::quit, QCoreApplication::instance(), &QCoreApplication::quit,
            Qt::QueuedConnection);
    // A search meets no encoders while they are loaded, and finds nothing: whoever typed at once isn't left
    // with that.
    connect(&m_clipService, &ChineseClipService::modelsLoadedChanged, m_state.search(),
            &SearchController::searchAgain);
}

ContentView::~ContentView() = default;

bool ContentView::show()
{
    if (!m_window) {
        m_window = makeContentWindow(m_engine, m_state);
        if (!m_window)
            return false;
        connect(m_window.get(), &QQuickWindow::frameSwapped, this, &ContentView::appear,
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        connect(m_window.get(), &QQuickWindow::visibleChanged, this, [this](bool isVisible) {
            if (!isVisible)
                Q_EMIT closed();
        });
    }
    m_window->setWindowStates(m_window->windowStates() & ~Qt::WindowMinimized);
    m_window->setVisible(true);
    // Raises it too, where the desktop lets a program do that.
    m_window->requestActivate();
    return true;
}

bool ContentView::isShown() const
{
    return m_window && m_window->isVisible();
}

void ContentView::appear()
{
    Q_EMIT appeared();
    m_state.appear();
    m_clipService.ensureModelsLoaded();
}

} // namespace Qorvane
