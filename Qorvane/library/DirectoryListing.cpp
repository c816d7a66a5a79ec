#include "library/DirectoryListing.h"

#include "platform/NativePath.h"

#include <QByteArrayView>
#include <QStringBuilder>
#include <QStringDecoder>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

namespace Qorvane {

namespace {

struct CloseDirectory
{
    void operator()(DIR *directory) const { ::closedir(directory); }
};
using OpenDirectory = std::unique_ptr<DIR, CloseDirectory>;

std::optional<QString> decodedName(QByteArrayView nativeName)
{
    // What most names are, several times faster.
    const auto isAscii = [](char byte) { return uchar(byte) < 0x80; };
    if (std::ranges::all_of(nativeName, isAscii))
        return QString::fromLatin1(nativeName);
    // A name may begin with what looks like a byte order mark; it is part of the name.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString name = decoder(nativeName);
    if (decoder.hasError())
        return std::nullopt;
    return name;
}

EntryKind kindFromMode(mode_t mode)
{
    if (S_ISDIR(mode))
        return EntryKind::directory;
    return S_ISLNK(mode) ? EntryKind::symbolicLink : EntryKind::other;
}

EntryKind kindOf(const dirent &entry, int directory)
{
    switch (entry.d_type) {
    case DT_DIR:
        return EntryKind::directory;
    case DT_LNK:
        return EntryKind::symbolicLink;
    case DT_UNKNOWN: { // some file systems don't tell in the listing
        struct stat status;
        if (::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
            return kindFromMode(status.st_mode);
        return EntryKind::other;
    }
    default:
        return EntryKind::other;
    }
}

void setError(QString *error)
{
    if (error)
        *error = QString::fromLocal8Bit(std::strerror(errno));
}

} // namespace

std::optional<DirectoryListing> listDirectory(const QString &path, QString *error)
{
    const std::optional<QByteArray> native = nativePath(path);
    errno = ENOENT; // the reason where no call is made at all
    const OpenDirectory directory(native ? ::opendir(native->constData()) : nullptr);
    struct stat status;
    if (!directory || ::fstat(::dirfd(directory.get()), &status) != 0) {
        setError(error);
        return std::nullopt;
    }
    DirectoryListing listing{{status.st_dev, status.st_ino}, {}};
    errno = 0;
    while (const dirent *entry = ::readdir(directory.get())) {
        if (entry->d_name[0] == '.')
            continue;
        const char *const bytes = entry->d_name; // may be longer than the array it is declared as
        const QByteArrayView nativeName(bytes);
        std::optional<QString> name = decodedName(nativeName);
        QByteArray undecoded = name ? QByteArray() : nativeName.toByteArray();
        listing.entries.push_back(
            {std::move(name), std::move(undecoded), kindOf(*entry, ::dirfd(directory.get()))});
        errno = 0;
    }
    if (errno != 0) {
        setError(error);
        return std::nullopt;
    }
    return listing;
}

QString childPath(const QString &directory, const QString &name)
{
    // Built in one piece: long lists are made of it.
    return directory.endsWith(u'/') ? directory + name : QString(directory % u'/' % name);
}

} // namespace Qorvane
