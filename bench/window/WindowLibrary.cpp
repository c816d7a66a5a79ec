#include "window/WindowLibrary.h"

#include "media/ThumbnailCache.h"
#include "media/ThumbnailPaths.h"
#include "platform/FileAttributes.h"
#include "store/EmbeddingStore.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>

#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

namespace Qorvane {

namespace {

constexpr int differentPictures = 300;
constexpr int vectorLength = 16; // the test encoder's
// What the cache stores its thumbnails with.
constexpr int jpegQuality = 90;

// Weighs about as much as the thumbnail of a photograph: 80 to 150 kB.
QImage picture(int seed)
{
    QRandomGenerator random(static_cast<quint32>(seed));
    QImage image(ThumbnailCache::thumbnailSize, ThumbnailCache::thumbnailSize * 3 / 4, QImage::Format_RGB32);
    image.fill(QColor::fromHsv(seed * 37 % 360, 120, 200));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    constexpr int strokes = 1500;
    for (int i = 0; i < strokes; ++i) {
        painter.setBrush(QColor::fromHsv(random.bounded(360), random.bounded(255), random.bounded(255), 120));
        painter.drawEllipse(QPoint(random.bounded(image.width()), random.bounded(image.height())),
                            random.bounded(4, 30), random.bounded(4, 30));
    }
    return image;
}

const QStringList &originals()
{
    static const QStringList paths = [] {
        const QString folder = qEnvironmentVariable("HOME") + QStringLiteral("/originals");
        QDir().mkpath(folder);
        QStringList list;
        for (int i = 0; i < differentPictures; ++i) {
            list.append(folder + QStringLiteral("/%1.jpg").arg(i));
            picture(i).save(list.last(), "JPEG", jpegQuality);
        }
        return list;
    }();
    return paths;
}

/// Straight into the database and in one transaction: the store's own way takes a commit for each row.
class Rows
{
public:
    Rows()
    {
        EmbeddingStore::shared();
        const QString path =
            qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Qorvane/embeddings.sqlite3");
        sqlite3_open(path.toUtf8().constData(), &m_database);
        sqlite3_exec(m_database, "BEGIN", nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(m_database,
                           "INSERT OR REPLACE INTO images(path, thumbnail_path, vector, dim, mtime) "
                           "VALUES(?, ?, ?, ?, ?)",
                           -1, &m_statement, nullptr);
    }
    ~Rows()
    {
        sqlite3_finalize(m_statement);
        sqlite3_exec(m_database, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(m_database);
    }
    Rows(const Rows &) = delete;
    Rows &operator=(const Rows &) = delete;

    void add(const FileUrl &file, const FileUrl &thumbnail)
    {
        std::vector<float> vector(vectorLength);
        std::ranges::generate(vector, [this] { return float(m_random.generateDouble()) - 0.5F; });
        const QByteArray path = file.path().toUtf8();
        const QByteArray thumbnailPath = thumbnail.path().toUtf8();
        sqlite3_bind_text(m_statement, 1, path.constData(), int(path.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(m_statement, 2, thumbnailPath.constData(), int(thumbnailPath.size()),
                          SQLITE_TRANSIENT);
        sqlite3_bind_blob(m_statement, 3, vector.data(), int(vector.size() * sizeof(float)),
                          SQLITE_TRANSIENT);
        sqlite3_bind_int(m_statement, 4, vectorLength);
        sqlite3_bind_double(m_statement, 5, fileAttributes(file.path())->modificationTime);
        sqlite3_step(m_statement);
        sqlite3_reset(m_statement);
    }

private:
    sqlite3 *m_database = nullptr;
    sqlite3_stmt *m_statement = nullptr;
    QRandomGenerator m_random{1};
};

} // namespace

void leaveTheDesktop(const QString &home)
{
    qputenv("HOME", home.toLocal8Bit());
    for (const char *variable : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) {
        const QString folder = home + u'/' + QString::fromLatin1(variable);
        QDir().mkpath(folder);
        qputenv(variable, folder.toLocal8Bit());
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("ORT_DISABLE_TELEMETRY", "1");
}

QList<FileUrl> makeFinishedFolder(const QString &path, int fileCount)
{
    QDir().mkpath(path);
    Rows rows;
    QList<FileUrl> files;
    for (int i = 0; i < fileCount; ++i) {
        const FileUrl file =
            FileUrl::file(path + QStringLiteral("/IMG_%1.jpg").arg(i, 5, 10, QLatin1Char('0')));
        QFile empty(file.path());
        if (!empty.open(QIODevice::WriteOnly))
            qFatal("no place for the photographs");
        const FileUrl thumbnail = *thumbnailURL(file);
        QDir().mkpath(thumbnail.deletingLastPathComponent().path());
        ::link(originals().at(i % differentPictures).toUtf8().constData(),
               thumbnail.path().toUtf8().constData());
        rows.add(file, thumbnail);
        files.append(file);
    }
    return files;
}

} // namespace Qorvane
