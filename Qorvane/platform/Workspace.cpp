#include "platform/Workspace.h"

#include "platform/GlobalQueue.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QMimeDatabase>
#include <QStringList>
#include <QUuid>

#include <gio/gdesktopappinfo.h>

#include <memory>
#include <utility>

namespace Qorvane::Workspace {

namespace {

struct Unref
{
    void operator()(gpointer object) const { g_object_unref(object); }
};

using Application = std::unique_ptr<GDesktopAppInfo, Unref>;

// A list of URIs as the C library takes it; the texts live as long as this does.
class UriList
{
public:
    explicit UriList(const QStringList &uris)
    {
        for (const QString &uri : uris)
            m_texts.append(uri.toUtf8());
        for (qsizetype i = m_texts.size(); i > 0; --i)
            m_list = g_list_prepend(m_list, m_texts[i - 1].data());
    }
    ~UriList() { g_list_free(m_list); }
    UriList(const UriList &) = delete;
    UriList &operator=(const UriList &) = delete;

    GList *get() const { return m_list; }

private:
    QList<QByteArray> m_texts;
    GList *m_list = nullptr;
};

QString takeMessage(GError *error)
{
    const QString message = error ? QString::fromUtf8(error->message) : QString();
    g_clear_error(&error);
    return message;
}

std::optional<QString> entryPath(const Application &application)
{
    const char *path = application ? g_desktop_app_info_get_filename(application.get()) : nullptr;
    return path ? std::optional(QFile::decodeName(path)) : std::nullopt;
}

std::optional<QString> launch(const Application &application, const QStringList &uris)
{
    const UriList list(uris);
    GError *error = nullptr;
    if (g_app_info_launch_uris(G_APP_INFO(application.get()), list.get(), nullptr, &error))
        return std::nullopt;
    return takeMessage(error);
}

QStringList uris(const QList<FileUrl> &files)
{
    QStringList list;
    for (const FileUrl &file : files)
        list.append(file.absoluteString());
    return list;
}

// The interface that file managers share: org.freedesktop.FileManager1. The connection is opened for this
// call alone, because one kept from a session that has ended never comes back to life.
bool askFileManager(const QStringList &uris)
{
    const QString name = QUuid::createUuid().toString();
    bool isShown = false;
    {
        const QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
        message.setArguments({uris, QString()});
        isShown = bus.isConnected() && bus.call(message).type() == QDBusMessage::ReplyMessage;
    }
    QDBusConnection::disconnectFromBus(name);
    return isShown;
}

// Nobody is told about a failure: no desktop, no file manager, no browser.
void openWithDefault(const QString &uri)
{
    GError *error = nullptr;
    g_app_info_launch_default_for_uri(uri.toUtf8().constData(), nullptr, &error);
    g_clear_error(&error);
}

void inBackground(GlobalQueue::Block block)
{
    GlobalQueue::async(QualityOfService::userInitiated, std::move(block));
}

} // namespace

void showInFileManager(const QList<FileUrl> &files)
{
    if (files.isEmpty())
        return;
    inBackground([files] {
        if (askFileManager(uris(files)))
            return;
        QStringList folders;
        for (const FileUrl &file : files)
            folders.append(file.deletingLastPathComponent().absoluteString());
        folders.removeDuplicates();
        for (const QString &folder : std::as_const(folders))
            openWithDefault(folder);
    });
}

void open(const FileUrl &file)
{
    inBackground([uri = file.absoluteString()] { openWithDefault(uri); });
}

void open(const QUrl &page)
{
    inBackground([uri = page.toString(QUrl::FullyEncoded)] { openWithDefault(uri); });
}

std::optional<QString> applicationWithIdentifier(const QString &identifier)
{
    const QByteArray name = identifier.toUtf8() + ".desktop";
    return entryPath(Application(g_desktop_app_info_new(name.constData())));
}

std::optional<QString> applicationToOpen(const QString &fileName)
{
    const QString type = QMimeDatabase().mimeTypeForFile(fileName, QMimeDatabase::MatchExtension).name();
    GAppInfo *application = g_app_info_get_default_for_type(type.toUtf8().constData(), FALSE);
    if (!application || !G_IS_DESKTOP_APP_INFO(application)) {
        g_clear_object(&application);
        return std::nullopt;
    }
    return entryPath(Application(G_DESKTOP_APP_INFO(application)));
}

void open(const QList<FileUrl> &files, const QString &desktopEntryPath, const Completion &completion)
{
    inBackground([files, desktopEntryPath, completion] {
        const Application application(
            g_desktop_app_info_new_from_filename(QFile::encodeName(desktopEntryPath).constData()));
        const std::optional<QString> error =
            application ? launch(application, uris(files))
                        : QStringLiteral("The application is no longer installed: ") + desktopEntryPath;
        if (completion)
            completion(error);
    });
}

} // namespace Qorvane::Workspace
