#include "QorvaneApp.h"

#include "library/QorManage.h"
#include "platform/Directories.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"
#include "platform/NotificationPermission.h"
#include "views/ContentView.h"

#include <QPointer>

namespace Qorvane {

QorvaneApp::QorvaneApp(QObject *parent)
    : QObject(parent)
{
}

QorvaneApp::~QorvaneApp() = default;

QorManage &QorvaneApp::qorManager()
{
    if (!m_qorManager)
        m_qorManager = std::make_unique<QorManage>();
    return *m_qorManager;
}

bool QorvaneApp::openMainWindow()
{
    if (!m_contentView) {
        m_contentView = std::make_unique<ContentView>(qorManager());
        connect(m_contentView.get(), &ContentView::appeared, this, &QorvaneApp::appear);
        // The library and its runs go on without the window; only the window's own goes. Later, since the
        // window is in the middle of telling us.
        connect(m_contentView.get(), &ContentView::closed, this, [this] {
            MainQueue::async([self = QPointer(this)] {
                if (self)
                    self->m_contentView.reset();
            });
        });
    }
    return m_contentView->show();
}

void QorvaneApp::appear()
{
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
