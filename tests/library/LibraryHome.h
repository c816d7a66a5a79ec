#pragma once

#include "platform/FileUrl.h"
#include "support/LogCapture.h"

#include <QColor>
#include <QDir>
#include <QSize>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace Qorvane {

/// One test's world: a folder for its media, an empty store, empty settings, an empty cache, and the log.
class LibraryHome
{
public:
    LibraryHome();
    /// Waits for what still runs in the background, then wipes what was stored.
    ~LibraryHome();
    LibraryHome(const LibraryHome &) = delete;
    LibraryHome &operator=(const LibraryHome &) = delete;

    /// The path of `name` in the media folder; the folder's own path for no name.
    QString path(const QString &name = {}) const;
    FileUrl file(const QString &name) const { return FileUrl::file(path(name)); }
    FileUrl folder(const QString &name = {}) const { return FileUrl::directory(path(name)); }

    /// Makes the folder, with those above it.
    FileUrl makeFolder(const QString &name) const;
    /// Writes a picture in the format of its extension, with the folders above it.
    FileUrl writePicture(const QString &name, const QColor &color = Qt::red, QSize size = {16, 12}) const;
    /// Writes a file that is no picture.
    FileUrl writeFile(const QString &name, const QByteArray &content = "not a picture") const;
    /// Sets the modification time, in seconds since 1970.
    static void setModificationTime(const FileUrl &file, double seconds);

    LogCapture &log() { return *m_log; }

private:
    static void wipe();

    /// The name has no "-", which the sidebar's selection would stumble over.
    QTemporaryDir m_folder{QDir::tempPath() + QStringLiteral("/qorvaneLibraryXXXXXX")};
    std::unique_ptr<LogCapture> m_log;
};

/// Runs the event loop until nothing works in the background, apart from runs, and nothing is queued.
void settle();

/// Names of the files, in order.
QStringList names(const QList<FileUrl> &urls);

} // namespace Qorvane
