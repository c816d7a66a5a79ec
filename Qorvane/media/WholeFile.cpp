#include "media/WholeFile.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace Qorvane {

namespace {

constexpr QLatin1String temporarySuffix(".partial");

class Descriptor
{
public:
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    bool isOpen() const { return m_descriptor >= 0; }

    bool write(const QByteArray &data) const
    {
        for (qsizetype written = 0; written < data.size();) {
            const ssize_t count =
                ::write(m_descriptor, data.constData() + written, size_t(data.size() - written));
            if (count < 0 && errno != EINTR)
                return false;
            if (count > 0)
                written += count;
        }
        return true;
    }

    bool synchronise() const { return ::fdatasync(m_descriptor) == 0; }

    bool close()
    {
        const int descriptor = std::exchange(m_descriptor, -1);
        // Some network file systems report a full disk only here.
        return descriptor < 0 || ::close(descriptor) == 0;
    }

private:
    int m_descriptor;
};

// No two writers, in this process or another, share a name.
QByteArray temporaryPath(const QString &path)
{
    static std::atomic_uint counter = 0;
    return QFile::encodeName(QStringLiteral("%1.%2-%3").arg(path).arg(::getpid()).arg(++counter) +
                             temporarySuffix);
}

bool writeTemporary(const QByteArray &path, const QByteArray &data)
{
    Descriptor file(::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    return file.isOpen() && file.write(data) && file.synchronise() && file.close();
}

} // namespace

bool writeWholeFile(const QString &path, const QByteArray &data, QString *error)
{
    const QByteArray temporary = temporaryPath(path);
    if (writeTemporary(temporary, data) &&
        std::rename(temporary.constData(), QFile::encodeName(path).constData()) == 0)
        return true;
    const int reason = errno;
    ::unlink(temporary.constData());
    if (error)
        *error = qt_error_string(reason);
    return false;
}

bool isTemporaryOfWholeFile(const QString &fileName)
{
    return fileName.endsWith(temporarySuffix);
}

} // namespace Qorvane
