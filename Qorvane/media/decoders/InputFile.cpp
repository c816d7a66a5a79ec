#include "media/decoders/InputFile.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace Qorvane {

namespace {

QString systemReason()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

} // namespace

std::shared_ptr<const InputFile> InputFile::open(const QString &path, QString &reason)
{
    // Without O_NONBLOCK the open of a pipe would wait for a writer, for ever if none comes.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0) {
        reason = systemReason();
        return {};
    }
    struct stat attributes = {};
    if (::fstat(descriptor, &attributes) != 0) {
        reason = systemReason();
        ::close(descriptor);
        return {};
    }
    std::shared_ptr<const InputFile> file(new InputFile(path, descriptor, attributes.st_size));
    if (!S_ISREG(attributes.st_mode)) {
        reason = QStringLiteral("not a regular file");
        return {};
    }
    if (attributes.st_size == 0) {
        reason = QStringLiteral("the file is empty");
        return {};
    }
    return file;
}

InputFile::InputFile(QString path, int descriptor, qint64 size)
    : m_path(std::move(path))
    , m_descriptor(descriptor)
    , m_size(size)
{
}

InputFile::~InputFile()
{
    ::close(m_descriptor);
}

QByteArray InputFile::nativePath() const
{
    return QFile::encodeName(m_path);
}

QString InputFile::extension() const
{
    return QFileInfo(m_path).suffix().toLower();
}

qint64 InputFile::readAt(qint64 offset, void *buffer, qint64 count) const
{
    if (offset < 0 || count <= 0)
        return 0;
    auto *out = static_cast<char *>(buffer);
    qint64 done = 0;
    while (done < count) {
        const ssize_t now = ::pread(m_descriptor, out + done, size_t(count - done), off_t(offset + done));
        if (now < 0 && errno == EINTR)
            continue;
        if (now <= 0)
            break;
        done += now;
    }
    return done;
}

} // namespace Qorvane
