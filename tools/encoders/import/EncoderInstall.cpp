#include "encoders/import/EncoderInstall.h"

#include "platform/Directories.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace Qorvane::Encoders {

namespace {

// Another import into the folder copies some hundred megabytes.
constexpr auto longestWait = std::chrono::minutes(2);

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

tl::unexpected<Problem> notInstalled(const QString &folder, const QString &reason)
{
    return problem(
        QStringLiteral("a folder for the encoders at %1").arg(folder), reason,
        QStringLiteral("make room and look after the permissions, or name another folder with --out"));
}

tl::unexpected<Problem> busy(const QString &folder)
{
    return problem(QStringLiteral("a folder for the encoders at %1").arg(folder),
                   QStringLiteral("another import at work there"),
                   QStringLiteral("wait until it has ended and run this again, or name another folder with "
                                  "--out"));
}

/// Has what was written to the file or folder reach the disk.
bool synchronise(const QString &path)
{
    const int handle = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (handle < 0)
        return false;
    const bool isDone = fsync(handle) == 0;
    ::close(handle);
    return isDone;
}

using Place = EncoderInstall::Place;

QString stagingPrefix(const QString &destination, Place place)
{
    switch (place) {
    case Place::beside:
        return QFileInfo(destination).absolutePath() + QStringLiteral("/.") +
               QFileInfo(destination).fileName() + QStringLiteral("-import-");
    case Place::inside:
        return destination + QStringLiteral("/.import-");
    }
    return {};
}

bool isThere(const QString &path)
{
    struct stat attributes;
    return ::lstat(QFile::encodeName(path).constData(), &attributes) == 0;
}

bool renamed(const QString &from, const QString &to)
{
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

/// Gives the file a second name, or where the file system has none for it moves it there. A folder stays.
bool keep(const QString &file, const QString &kept)
{
    const QFileInfo info(file);
    if (info.isDir() && !info.isSymLink()) {
        errno = EISDIR;
        return false;
    }
    return ::link(QFile::encodeName(file).constData(), QFile::encodeName(kept).constData()) == 0 ||
           renamed(file, kept);
}

QString keptIn(const QString &staging)
{
    return staging + QStringLiteral("/replaced");
}

/// The kept files aren't needed any more. Only under another name may they go one by one: what lies under
/// their own is put back.
void dropKept(const QString &staging)
{
    renamed(keptIn(staging), staging + QStringLiteral("/dropped"));
}

tl::unexpected<Problem> notPutBack(const QString &folder, const QString &reason, const QString &kept)
{
    return problem(QStringLiteral("a folder for the encoders at %1").arg(folder),
                   QStringLiteral("%1; files of the old set lie in %2").arg(reason, kept),
                   QStringLiteral("make room and look after the permissions, then run this again: it puts "
                                  "them back first"));
}

/// Puts back what an import that was killed, or that couldn't, had kept of the old set, and removes the rest
/// of what it left behind. The lock is held, so none is at work. A file that only the new set has stays: who
/// put it there can't be told, and the old set doesn't mind it.
Outcome<void> clearRemains(const QString &stagingPrefix, const QString &destination)
{
    const QFileInfo prefix(stagingPrefix);
    const QStringList remains =
        QDir(prefix.absolutePath())
            .entryList({prefix.fileName() + u'*'}, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString &name : remains) {
        const QString staging = prefix.absolutePath() + u'/' + name;
        const QString kept = keptIn(staging);
        const QStringList files = QDir(kept).entryList(QDir::Files | QDir::Hidden | QDir::System);
        for (const QString &file : files) {
            if (!renamed(kept + u'/' + file, destination + u'/' + file))
                return notPutBack(destination, QStringLiteral("%1: %2").arg(file, systemError()), kept);
        }
        dropKept(staging);
        QDir(staging).removeRecursively();
    }
    return {};
}

/// Both folders change places in one step of the file system.
bool exchange(const QString &one, const QString &other)
{
    return renameat2(AT_FDCWD, QFile::encodeName(one).constData(), AT_FDCWD,
                     QFile::encodeName(other).constData(), RENAME_EXCHANGE) == 0;
}

} // namespace

QStringList FamilyFiles::all() const
{
    const QString beside = QStringLiteral(".data");
    return {vocabulary, vision + beside, text + beside, vision, text, licence};
}

FamilyFiles FamilyFiles::of(Family family)
{
    switch (family) {
    case Family::chinese:
        return {QStringLiteral("ChineseClipVisionEncoder.onnx"),
                QStringLiteral("ChineseClipTextEncoder.onnx"), QStringLiteral("chinese_vocab.json"),
                QStringLiteral("ChineseClipLicence.txt")};
    case Family::openai:
        return {QStringLiteral("ClipVisionEncoder.onnx"), QStringLiteral("ClipTextEncoder.onnx"),
                QStringLiteral("vocab.json"), QStringLiteral("ClipLicence.txt")};
    }
    return {};
}

EncoderInstall::MadeFolder::~MadeFolder()
{
    // Only when it is empty.
    ::rmdir(QFile::encodeName(m_path).constData());
}

EncoderInstall::Place EncoderInstall::placeFor(const QString &folder)
{
    struct statx own;
    struct statx parent;
    const QByteArray parentPath = QFile::encodeName(QFileInfo(folder).absolutePath());
    const auto read = [](const QByteArray &path, struct statx &attributes) {
        return ::statx(AT_FDCWD, path.constData(), 0, STATX_BASIC_STATS, &attributes) == 0;
    };
    if (::access(parentPath.constData(), W_OK | X_OK) != 0 || !read(QFile::encodeName(folder), own) ||
        !read(parentPath, parent))
        return Place::inside;
    // A folder may also be mounted from elsewhere in the same file system.
    const bool isMountPoint = (own.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    const bool isOfTheSameDisk =
        own.stx_dev_major == parent.stx_dev_major && own.stx_dev_minor == parent.stx_dev_minor;
    return isOfTheSameDisk && !isMountPoint ? Place::beside : Place::inside;
}

Outcome<EncoderInstall> EncoderInstall::begin(const QString &destination, std::optional<Place> place)
{
    const QString absolute = QDir::cleanPath(QDir(destination).absolutePath());
    const bool wasThere = QFileInfo::exists(absolute);
    if (!Directories::create(absolute))
        return notInstalled(absolute, QStringLiteral("that it can't be made"));
    EncoderInstall install;
    // The folder itself, not a link to it, is what changes places.
    install.m_destination = QFileInfo(absolute).canonicalFilePath();
    if (!wasThere)
        install.m_made = std::make_unique<MadeFolder>(install.m_destination);
    install.m_place = place.value_or(placeFor(install.m_destination));
    const QString prefix = stagingPrefix(install.m_destination, install.m_place);
    install.m_lock = std::make_unique<QLockFile>(prefix + QStringLiteral("lock"));
    install.m_lock->setStaleLockTime(0);
    if (!install.m_lock->tryLock(std::chrono::milliseconds(longestWait).count()))
        return install.m_lock->error() == QLockFile::LockFailedError
                   ? busy(absolute)
                   : notInstalled(absolute, QStringLiteral("that nothing can be put there"));
    if (const Outcome<void> cleared = clearRemains(prefix, install.m_destination); !cleared)
        return tl::unexpected(cleared.error());
    install.m_staging = std::make_unique<QTemporaryDir>(prefix + QStringLiteral("XXXXXX"));
    if (!install.m_staging->isValid())
        return notInstalled(absolute, install.m_staging->errorString());
    return install;
}

bool EncoderInstall::linkOthers(const QStringList &replaced) const
{
    const QFileInfoList entries =
        QDir(m_destination)
            .entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            return false;
        if (replaced.contains(entry.fileName()))
            continue;
        const QString target = staging() + u'/' + entry.fileName();
        if (::link(QFile::encodeName(entry.filePath()).constData(), QFile::encodeName(target).constData()) !=
            0)
            return false;
    }
    struct stat attributes;
    return ::stat(QFile::encodeName(m_destination).constData(), &attributes) == 0 &&
           ::chmod(QFile::encodeName(staging()).constData(), attributes.st_mode & 07777) == 0;
}

bool EncoderInstall::putBack(const QStringList &replaced, const QStringList &placed) const
{
    const QString kept = keptIn(staging());
    bool isBack = true;
    for (const QString &name : replaced) {
        const QString target = m_destination + u'/' + name;
        if (isThere(kept + u'/' + name))
            isBack &= renamed(kept + u'/' + name, target);
        else if (placed.contains(name))
            isBack &= QFile::remove(target);
    }
    // What couldn't be put back is all that there is of it; the next `begin` tries again.
    m_staging->setAutoRemove(isBack);
    if (isBack)
        dropKept(staging());
    return isBack;
}

Outcome<bool> EncoderInstall::renameOneByOne(const QStringList &names, const QStringList &replaced,
                                             const std::function<void()> &onStep) const
{
    const QString kept = keptIn(staging());
    QStringList placed;
    const auto undone = [&](const QString &name) {
        const QString reason = QStringLiteral("%1: %2").arg(name, systemError());
        return putBack(replaced, placed) ? notInstalled(m_destination, reason)
                                         : notPutBack(m_destination, reason, kept);
    };
    if (!QDir().mkdir(kept))
        return notInstalled(m_destination, systemError());
    for (const QString &name : replaced) {
        const QString target = m_destination + u'/' + name;
        if (isThere(target) && !keep(target, kept + u'/' + name))
            return undone(name);
    }
    onStep();
    for (const QString &name : replaced) {
        const QString target = m_destination + u'/' + name;
        if (names.contains(name)) {
            if (!renamed(staging() + u'/' + name, target))
                return undone(name);
            placed.append(name);
        } else if (isThere(target) && ::unlink(QFile::encodeName(target).constData()) != 0) {
            return undone(name);
        }
        onStep();
    }
    if (!synchronise(m_destination))
        return undone(m_destination);
    dropKept(staging());
    return false;
}

Outcome<bool> EncoderInstall::commit(Family family, const QStringList &names,
                                     const std::function<void()> &onStep)
{
    const auto step = onStep ? onStep : [] {};
    const QStringList replaced = FamilyFiles::of(family).all();
    for (const QString &name : names) {
        if (!synchronise(staging() + u'/' + name))
            return notInstalled(m_destination, systemError());
    }
    step();
    const bool isLinked = m_place == Place::beside && linkOthers(replaced);
    step();
    if (!isLinked || !synchronise(staging()) || !exchange(staging(), m_destination))
        return renameOneByOne(names, replaced, step);
    step();
    // Without this a power cut may bring the old folder back, which is no harm but a surprise.
    synchronise(QFileInfo(m_destination).absolutePath());
    m_staging->remove();
    return true;
}

} // namespace Qorvane::Encoders
