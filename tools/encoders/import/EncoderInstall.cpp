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

QString stagingPrefix(const QString &destination)
{
    return QFileInfo(destination).absolutePath() + QStringLiteral("/.") + QFileInfo(destination).fileName() +
           QStringLiteral("-import-");
}

/// What imports that were killed left behind. The lock is held, so none is at work.
void removeRemains(const QString &destination)
{
    const QFileInfo prefix(stagingPrefix(destination));
    const QStringList remains =
        QDir(prefix.absolutePath())
            .entryList({prefix.fileName() + u'*'}, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString &name : remains)
        QDir(prefix.absolutePath() + u'/' + name).removeRecursively();
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

Outcome<EncoderInstall> EncoderInstall::begin(const QString &destination)
{
    const QString absolute = QDir::cleanPath(QDir(destination).absolutePath());
    if (!Directories::create(absolute))
        return notInstalled(absolute, QStringLiteral("that it can't be made"));
    EncoderInstall install;
    // The folder itself, not a link to it, is what changes places.
    install.m_destination = QFileInfo(absolute).canonicalFilePath();
    const QString prefix = stagingPrefix(install.m_destination);
    install.m_lock = std::make_unique<QLockFile>(prefix + QStringLiteral("lock"));
    install.m_lock->setStaleLockTime(0);
    if (!install.m_lock->tryLock(std::chrono::milliseconds(longestWait).count()))
        return notInstalled(absolute, install.m_lock->error() == QLockFile::LockFailedError
                                          ? QStringLiteral("another import at work there")
                                          : QStringLiteral("that nothing can be put beside it"));
    removeRemains(install.m_destination);
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

Outcome<bool> EncoderInstall::renameOneByOne(const QStringList &names, const QStringList &replaced,
                                             const std::function<void()> &onStep) const
{
    for (const QString &name : replaced) {
        const QString target = m_destination + u'/' + name;
        if (names.contains(name)) {
            if (::rename(QFile::encodeName(staging() + u'/' + name).constData(),
                         QFile::encodeName(target).constData()) != 0)
                return notInstalled(m_destination, systemError());
        } else if (QFileInfo(target).isFile() && !QFile::remove(target)) {
            return notInstalled(m_destination, QStringLiteral("that %1 can't be removed").arg(name));
        }
        onStep();
    }
    if (!synchronise(m_destination))
        return notInstalled(m_destination, systemError());
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
    const bool isLinked = linkOthers(replaced);
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
