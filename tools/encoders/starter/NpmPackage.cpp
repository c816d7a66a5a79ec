#include "encoders/starter/NpmPackage.h"

#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QProcess>
#include <QStandardPaths>

namespace Qorvane::Encoders {

namespace {

// npm starts slowly on a small machine, and asks the registry once.
constexpr int npmMilliseconds = 60'000;

// "@scope/name" has a slash, which no file name can have.
QString fileName(const NpmPackage &package)
{
    return QString(package.name).replace(u'/', u'-') + u'-' + package.version + QStringLiteral(".tgz");
}

} // namespace

NpmCache::NpmCache(QString folder, Locate locate)
    : m_folder(std::move(folder))
    , m_locate(std::move(locate))
{
}

QString NpmCache::defaultFolder()
{
    const QString chosen = qEnvironmentVariable("QORVANE_DOWNLOAD_CACHE");
    if (!chosen.isEmpty())
        return chosen;
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/qorvane-build");
}

Outcome<QUrl> NpmCache::askNpm(const QString &title)
{
    QProcess npm;
    npm.setProcessChannelMode(QProcess::SeparateChannels);
    npm.start(QStringLiteral("npm"), {QStringLiteral("view"), title, QStringLiteral("dist.tarball")});
    if (!npm.waitForStarted())
        return problem(QStringLiteral("the program npm"), npm.errorString(),
                       QStringLiteral("install the package npm"));
    const auto notFound = [&title](const QString &found) {
        return problem(QStringLiteral("npm to find %1").arg(title), found,
                       QStringLiteral("look after the network connection and npm's registry setting"));
    };
    if (!npm.waitForFinished(npmMilliseconds)) {
        npm.kill();
        npm.waitForFinished();
        return notFound(QStringLiteral("no answer within %1 s").arg(npmMilliseconds / 1000));
    }
    if (npm.exitStatus() != QProcess::NormalExit || npm.exitCode() != 0)
        return notFound(QString::fromUtf8(npm.readAllStandardError()).simplified().left(300));
    const QUrl address(QString::fromUtf8(npm.readAllStandardOutput()).trimmed(), QUrl::StrictMode);
    if (!address.isValid() || !address.scheme().startsWith(QLatin1String("http")))
        return problem(QStringLiteral("the address of %1").arg(title),
                       QStringLiteral("npm gave \"%1\"").arg(address.toString()),
                       QStringLiteral("look after npm's registry setting"));
    return address;
}

Outcome<QString> NpmCache::fetch(const NpmPackage &package, const ProgressReport &progress) const
{
    const QString path = m_folder + u'/' + fileName(package);
    if (isPinned(path, package.archive))
        return path;
    if (!QDir().mkpath(m_folder))
        return problem(QStringLiteral("a folder to download to"),
                       QStringLiteral("%1 can't be made").arg(m_folder),
                       QStringLiteral("name another folder in QORVANE_DOWNLOAD_CACHE"));
    // Source trees share the cache, and two downloads into one file would mix. Whoever waited finds it done.
    QLockFile lock(path + QStringLiteral(".lock"));
    lock.setStaleLockTime(0); // a download may take hours; only a dead owner's lock is void
    if (!lock.lock())
        return problem(QStringLiteral("a place to download to"),
                       QStringLiteral("%1 can't be written").arg(m_folder),
                       QStringLiteral("free the disk, or name another folder in QORVANE_DOWNLOAD_CACHE"));
    if (isPinned(path, package.archive))
        return path;
    const Outcome<QUrl> address = m_locate(package.title());
    if (!address)
        return tl::unexpected(address.error());
    if (const Outcome<void> done = download(*address, path, package.archive, progress); !done)
        return tl::unexpected(done.error());
    return path;
}

} // namespace Qorvane::Encoders
