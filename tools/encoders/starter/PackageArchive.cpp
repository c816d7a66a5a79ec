#include "encoders/starter/PackageArchive.h"

#include <QFile>
#include <QFileInfo>

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace Qorvane::Encoders {

namespace {

constexpr size_t blockSize = 1 << 16;
// npm puts everything below this folder.
constexpr QStringView root = u"package/";

struct FreeArchive
{
    void operator()(archive *handle) const { archive_read_free(handle); }
};
using ArchiveHandle = std::unique_ptr<archive, FreeArchive>;

tl::unexpected<Problem> damaged(const QString &path, const QString &what)
{
    return problem(QStringLiteral("an npm package in %1").arg(QFileInfo(path).fileName()), what,
                   QStringLiteral("delete %1 and run this again").arg(path));
}

bool staysBelow(const QString &name)
{
    const QStringList steps = name.split(u'/');
    return name.startsWith(root) && !name.contains(QChar(u'\0')) && !steps.contains(QStringLiteral(".."));
}

bool isWanted(const QString &name, const QStringList &wanted)
{
    return std::ranges::any_of(
        wanted, [&](const QString &one) { return one.endsWith(u'/') ? name.startsWith(one) : name == one; });
}

// Whether no later member can matter.
bool isComplete(const PackageFiles &files, const QStringList &wanted)
{
    return std::ranges::all_of(
        wanted, [&](const QString &one) { return !one.endsWith(u'/') && files.contains(one); });
}

QString missingOne(const PackageFiles &files, const QStringList &wanted)
{
    for (const QString &one : wanted) {
        const bool isThere =
            std::ranges::any_of(files, [&](const auto &file) { return isWanted(file.first, {one}); });
        if (!isThere)
            return one;
    }
    return {};
}

// What the member says of its own size isn't believed: bytes are counted as they come.
std::optional<QByteArray> contents(archive *handle, qint64 limit)
{
    QByteArray bytes;
    QByteArray block(qsizetype(blockSize), Qt::Uninitialized);
    for (;;) {
        const la_ssize_t got = archive_read_data(handle, block.data(), blockSize);
        if (got < 0 || bytes.size() + got > limit)
            return std::nullopt;
        if (got == 0)
            return bytes;
        bytes.append(block.constData(), got);
    }
}

} // namespace

Outcome<PackageFiles> readPackage(const QString &path, const QStringList &wanted, qint64 limit)
{
    const ArchiveHandle handle(archive_read_new());
    archive_read_support_filter_gzip(handle.get());
    archive_read_support_format_tar(handle.get());
    if (archive_read_open_filename(handle.get(), QFile::encodeName(path).constData(), blockSize) !=
        ARCHIVE_OK)
        return damaged(path, QString::fromUtf8(archive_error_string(handle.get())));

    PackageFiles files;
    archive_entry *entry = nullptr;
    int state = ARCHIVE_OK;
    while (!isComplete(files, wanted) &&
           (state = archive_read_next_header(handle.get(), &entry)) == ARCHIVE_OK) {
        const char *rawName = archive_entry_pathname(entry);
        const QString fullName = QFile::decodeName(rawName ? rawName : "");
        const auto type = archive_entry_filetype(entry);
        const bool isLink = archive_entry_hardlink(entry) || archive_entry_symlink(entry);
        if (!staysBelow(fullName) || isLink || (type != AE_IFREG && type != AE_IFDIR))
            return damaged(path, QStringLiteral("the member \"%1\", which no package has").arg(fullName));
        const QString name = fullName.sliced(root.size());
        if (type != AE_IFREG || !isWanted(name, wanted))
            continue;
        std::optional<QByteArray> bytes = contents(handle.get(), limit);
        if (!bytes)
            return damaged(path, QStringLiteral("\"%1\" is cut off or too large").arg(name));
        limit -= bytes->size();
        files[name] = *std::move(bytes);
    }
    if (state != ARCHIVE_OK && state != ARCHIVE_EOF)
        return damaged(path, QString::fromUtf8(archive_error_string(handle.get())));
    if (const QString missing = missingOne(files, wanted); !missing.isEmpty())
        return damaged(path, QStringLiteral("no \"%1\" in it").arg(missing));
    return files;
}

} // namespace Qorvane::Encoders
