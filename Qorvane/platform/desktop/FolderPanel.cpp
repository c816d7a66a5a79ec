#include "platform/desktop/FolderPanel.h"

#include "platform/desktop/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QUuid>

namespace Qorvane {

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");

// The portal answers on an object whose path follows from the caller's bus name and a token of its choice;
// listening there before the call is the only way not to miss a quick answer.
QString requestPathFor(const QString &token)
{
    QString sender = QDBusConnection::sessionBus().baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
}

} // namespace

QString FolderPanel::handleOf(const QString &platformName, WId window)
{
    // Under Wayland a window has to be exported first, which the toolkit offers to itself only.
    if (platformName != QStringLiteral("xcb"))
        return {};
    return QStringLiteral("x11:") + QString::number(window, 16);
}

void FolderPanel::open(const QString &title, const QString &parentWindow)
{
    if (m_isOpen)
        return;
    if (!SessionBus::isPresent()) {
        QMetaObject::invokeMethod(this, &FolderPanel::unavailable, Qt::QueuedConnection);
        return;
    }
    m_isOpen = true;
    const int opening = ++m_openings;
    watchPortal();
    const QString token = QStringLiteral("qorvane") + QUuid::createUuid().toString(QUuid::Id128);
    listenTo(requestPathFor(token));

    QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath,
                                                       QStringLiteral("org.freedesktop.portal.FileChooser"),
                                                       QStringLiteral("OpenFile"));
    call << parentWindow << title
         << QVariantMap{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("directory"), true},
                        {QStringLiteral("multiple"), true},
                        {QStringLiteral("modal"), true}};
    auto *const watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, opening] {
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        watcher->deleteLater();
        // Answered already, or lost with the portal; what is open now may be another panel.
        if (!m_isOpen || opening != m_openings)
            return;
        if (reply.isError()) {
            finish();
            Q_EMIT unavailable();
            return;
        }
        // Portals of before 2016 choose the path themselves.
        if (reply.value().path() != m_requestPath)
            listenTo(reply.value().path());
    });
}

void FolderPanel::onResponse(uint response, const QVariantMap &results)
{
    finish();
    QList<QUrl> folders;
    // 0 is the answer "OK"; dismissing the panel and a failure of it both choose nothing.
    if (response == 0) {
        for (const QString &uri : results.value(QStringLiteral("uris")).toStringList())
            folders.append(QUrl(uri));
    }
    Q_EMIT chosen(folders);
}

// A portal that crashes with its panel open, or is restarted, never answers.
void FolderPanel::watchPortal()
{
    if (m_watchesPortal)
        return;
    m_watchesPortal = true;
    auto *const watcher = new QDBusServiceWatcher(portalService, QDBusConnection::sessionBus(),
                                                  QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &oldOwner) {
                // Without an old owner, the portal was only started by our call.
                if (!m_isOpen || oldOwner.isEmpty())
                    return;
                finish();
                Q_EMIT unavailable();
            });
}

void FolderPanel::listenTo(const QString &requestPath)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    const auto slot = SLOT(onResponse(uint, QVariantMap));
    if (!m_requestPath.isEmpty())
        bus.disconnect(portalService, m_requestPath, requestInterface, QStringLiteral("Response"), this,
                       slot);
    m_requestPath = requestPath;
    if (!m_requestPath.isEmpty())
        bus.connect(portalService, m_requestPath, requestInterface, QStringLiteral("Response"), this, slot);
}

void FolderPanel::finish()
{
    listenTo({});
    m_isOpen = false;
}

} // namespace Qorvane
