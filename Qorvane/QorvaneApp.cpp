#include "QorvaneApp.h"

#include "library/DeferredWrites.h"
#include "library/QorManage.h"
#include "platform/DetachedTask.h"
#include "platform/Directories.h"
#include "platform/GlobalQueue.h"
#include "platform/InstanceMessage.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"
#include "platform/NotificationPermission.h"
#include "views/window/ContentView.h"

#include <QPointer>

#include <utility>

namespace Qorvane {

QorvaneApp::QorvaneApp(QObject *parent, const LibraryTimings &timings, std::chrono::milliseconds betweenLooks)
    : QObject(parent)
    , m_timings(timings)
    , m_idleWatch([this] { return isWorking(); }, betweenLooks)
{
    connect(&m_idleWatch, &IdleWatch::idle, this, &QorvaneApp::finished);
}

QorvaneApp::~QorvaneApp() = default;

QorManage &QorvaneApp::qorManager()
{
    if (!m_qorManager)
        m_qorManager = std::make_unique<QorManage>(nullptr, m_timings);
    return *m_qorManager;
}

bool QorvaneApp::openMainWindow()
{
    m_idleWatch.stop();
    if (!m_contentView) {
        m_contentView = std::make_unique<ContentView>(qorManager());
        connect(m_contentView.get(), &ContentView::appeared, this, &QorvaneApp::appear);
        // The library and its runs go on without the window; only the window's own goes. Later, since the
        // window is in the middle of telling us.
        connect(m_contentView.get(), &ContentView::closed, this, [this] {
            MainQueue::async([self = QPointer(this)] {
                if (self)
                    self->dropClosedWindow();
            });
        });
    }
    const bool isShown = m_contentView->show();
    if (!isShown)
        m_idleWatch.start();
    return isShown;
}

void QorvaneApp::dropClosedWindow()
{
    // It may have been shown again since.
    if (!m_contentView || m_contentView->isShown())
        return;
    m_contentView.reset();
    m_idleWatch.start();
}

// The three places where all work of the library runs, also what a run begins with: the walk through its
// folder. A folder that is being added falls between them for moments.
bool QorvaneApp::isWorking() const
{
    return !DetachedTask::isIdle() || !GlobalQueue::isIdle() || !DeferredWrites::isIdle() ||
           (m_qorManager && m_qorManager->isChangingFolders());
}

void QorvaneApp::obey(const QStringList &message)
{
    if (const std::optional<QByteArray> token = InstanceMessage::shownWith(message)) {
        // Where the toolkit looks for it when a window asks for the focus.
        if (!token->isEmpty())
            qputenv("XDG_ACTIVATION_TOKEN", *token);
        openMainWindow();
    } else if (const std::optional<QStringList> paths = InstanceMessage::added(message)) {
        for (const QString &path : *paths)
            qorManager().addFolder(FileUrl::directory(path));
        // It may be one look from the end.
        if (!m_contentView)
            m_idleWatch.start();
    }
}

void QorvaneApp::appear()
{
    // A window that is opened again finds the program started.
    if (std::exchange(m_hasAppeared, true))
        return;
    NotificationPermission::request();
    logLocations();
}

void QorvaneApp::logLocations()
{
    if (const std::optional<QString> support = Directories::applicationSupport()) {
        const QString folder = *support + QStringLiteral("/Qorvane");
        Log::line(QStringLiteral("🚀 Qorvane 应用启动"));
        Log::line(QStringLiteral("📁 应用支持目录: ") + folder);
        Log::line(QStringLiteral("🗄️ 数据库文件: ") + folder +
                  QStringLiteral("/embeddings.sqlite3"));
    }
    if (const std::optional<QString> caches = Directories::caches())
        Log::line(QStringLiteral("🖼️ 缩略图目录: ") + *caches +
                  QStringLiteral("/com.qorvane.thumbnails"));
}

} // namespace Qorvane
