#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace Qorvane {

struct DriverOutcome
{
    int code = -1;
    QString output;
    QString errors;
};

/// A home for runs of the headless driver, as a process of its own, on a library that vanishes with this.
class DriverHome
{
public:
    /// Folders for data, cache, settings and photographs, all empty.
    DriverHome();

    /// Where the pictures to index belong.
    QString photographs() const { return path("photographs"); }
    QString databasePath() const { return path("data/Qorvane/embeddings.sqlite3"); }
    QString thumbnailCache() const { return path("cache/com.qorvane.thumbnails"); }
    QString path(const char *relative) const { return m_place.filePath(QString::fromLatin1(relative)); }

    /// The small English encoders of the tests; false when they can't be copied.
    [[nodiscard]] bool installEncoders() const;
    /// Takes away what the runs made; pictures and encoders stay.
    void forgetLibrary() const;

    /// Starts the driver and returns at once.
    std::unique_ptr<QProcess> start(const QStringList &arguments) const;
    /// Runs it to its end.
    DriverOutcome run(const QStringList &arguments) const;

private:
    QTemporaryDir m_place;
};

} // namespace Qorvane
