#include "encoders/starter/Download.h"

#include <QCryptographicHash>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QSslConfiguration>

#include <memory>

namespace Qorvane::Encoders {

namespace {

// A server that says nothing for so long has gone.
constexpr int silenceMilliseconds = 30'000;
// Broken connections in a row, without a byte in between, before the user is told.
constexpr int fruitlessAttempts = 3;

constexpr int statusOk = 200;
constexpr int statusPartialContent = 206;

/// What is in the way of a download.
enum class Obstacle {
    connection, ///< asking again may help
    answer,     ///< the server gives something else, and would again
    refusal,    ///< the server says that it doesn't give the file
    disk,
};

/// What became of one request.
struct Attempt
{
    Obstacle obstacle = Obstacle::connection;
    QString error; ///< empty when everything asked for came
};

QString remedyFor(Obstacle obstacle)
{
    switch (obstacle) {
    case Obstacle::connection:
        return QStringLiteral("look after the network connection and run this again: what has come is kept, "
                              "and the download goes on from there");
    case Obstacle::answer:
        return QStringLiteral("run this again; when it happens twice, something between you and the registry "
                              "changes what you download");
    case Obstacle::refusal:
        return QStringLiteral("look after the registry that npm is set to (npm config get registry), and any "
                              "proxy on the way: it must have this package and let you have it");
    case Obstacle::disk:
        return QStringLiteral("free the disk, or name another folder in QORVANE_DOWNLOAD_CACHE");
    }
    Q_UNREACHABLE();
}

QString partPath(const QString &path)
{
    return path + QStringLiteral(".part");
}

// A reply to a range request that begins elsewhere than asked would be glued on in the wrong place.
bool beginsAt(const QNetworkReply &reply, qint64 offset)
{
    return reply.rawHeader("Content-Range").trimmed().startsWith("bytes " + QByteArray::number(offset) + '-');
}

// Behind a proxy of a company's own, npm is told with this variable whom to trust besides the system's
// authorities. It has just given the address.
QSslConfiguration asNpmTrusts()
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    const QString more = qEnvironmentVariable("NODE_EXTRA_CA_CERTS");
    if (!more.isEmpty())
        configuration.addCaCertificates(more);
    return configuration;
}

/// One request for what is missing of the part file.
class Transfer
{
public:
    Transfer(QFile &part, const DownloadPin &pin, const ProgressReport &progress)
        : m_part(part)
        , m_pin(pin)
        , m_progress(progress)
    {
    }

    Attempt run(QNetworkAccessManager &network, const QUrl &address)
    {
        const qint64 offset = m_part.size();
        QNetworkRequest request(address);
        request.setRawHeader("Range", "bytes=" + QByteArray::number(offset) + '-' +
                                          QByteArray::number(m_pin.length - 1));
        // A compressed transfer would count other bytes than the pin.
        request.setRawHeader("Accept-Encoding", "identity");
        request.setTransferTimeout(silenceMilliseconds);
        request.setSslConfiguration(asNpmTrusts());
        const std::unique_ptr<QNetworkReply> reply(network.get(request));
        QEventLoop loop;
        QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
        QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, [&] { take(*reply, offset); });
        if (!reply->isFinished())
            loop.exec();
        take(*reply, offset);
        return outcome(*reply);
    }

private:
    void take(QNetworkReply &reply, qint64 offset)
    {
        const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (m_isStopped || (status != statusOk && status != statusPartialContent))
            return;
        if (!m_hasBegun && !begin(reply, status, offset))
            return;
        const QByteArray bytes = reply.read(m_pin.length - m_part.size());
        if (m_part.write(bytes) != bytes.size() || !m_part.flush()) {
            stop(reply, Obstacle::disk,
                 QStringLiteral("the file can't be written: %1").arg(m_part.errorString()));
            return;
        }
        if (m_progress)
            m_progress(double(m_part.size()) / double(m_pin.length));
        // A server without ranges sends all it has; no more is needed.
        if (m_part.size() >= m_pin.length) {
            m_isStopped = true;
            reply.abort();
        }
    }

    bool begin(QNetworkReply &reply, int status, qint64 offset)
    {
        m_hasBegun = true;
        if (status == statusPartialContent && !beginsAt(reply, offset)) {
            stop(reply, Obstacle::answer,
                 QStringLiteral("the server sent another part of the file than was asked for"));
            return false;
        }
        if (status == statusOk && !m_part.resize(0)) {
            stop(reply, Obstacle::disk,
                 QStringLiteral("the file can't be written: %1").arg(m_part.errorString()));
            return false;
        }
        m_part.seek(m_part.size());
        return true;
    }

    void stop(QNetworkReply &reply, Obstacle obstacle, const QString &why)
    {
        m_isStopped = true;
        m_failure = {.obstacle = obstacle, .error = why};
        reply.abort();
    }

    Attempt outcome(const QNetworkReply &reply) const
    {
        if (!m_failure.error.isEmpty())
            return m_failure;
        if (m_part.size() >= m_pin.length)
            return {};
        const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (status >= 400 && status < 500)
            return {.obstacle = Obstacle::refusal,
                    .error = QStringLiteral("the server answered %1").arg(status)};
        return {.obstacle = Obstacle::connection,
                .error = reply.error() == QNetworkReply::NoError
                             ? QStringLiteral("the server sent less than was asked for")
                             : reply.errorString()};
    }

    QFile &m_part;
    const DownloadPin &m_pin;
    const ProgressReport &m_progress;
    bool m_hasBegun = false;
    bool m_isStopped = false;
    Attempt m_failure;
};

Attempt gather(const QUrl &address, QFile &part, const DownloadPin &pin, const ProgressReport &progress)
{
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    QNetworkAccessManager network;
    Attempt attempt;
    for (int fruitless = 0; part.size() < pin.length && fruitless < fruitlessAttempts;) {
        const qint64 before = part.size();
        attempt = Transfer(part, pin, progress).run(network, address);
        if (attempt.obstacle != Obstacle::connection)
            return attempt;
        fruitless = part.size() > before ? 0 : fruitless + 1;
    }
    return attempt;
}

} // namespace

bool isPinned(const QString &path, const DownloadPin &pin)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() != pin.length)
        return false;
    QCryptographicHash hash(QCryptographicHash::Sha512);
    return hash.addData(&file) && hash.result() == pin.sha512;
}

Outcome<void> download(const QUrl &address, const QString &path, const DownloadPin &pin,
                       const ProgressReport &progress)
{
    const QString name = QFileInfo(path).fileName();
    QFile part(partPath(path));
    if (!part.open(QIODevice::ReadWrite))
        return problem(QStringLiteral("a place to download to"),
                       QStringLiteral("%1 can't be written: %2").arg(part.fileName(), part.errorString()),
                       remedyFor(Obstacle::disk));
    // What is longer than the whole can't be its beginning.
    if (part.size() > pin.length)
        part.resize(0);
    const Attempt attempt = gather(address, part, pin, progress);
    const qint64 received = part.size();
    part.close();
    if (!attempt.error.isEmpty()) {
        return problem(
            QStringLiteral("the download of %1 to end").arg(name),
            QStringLiteral("%1, after %2 of %3 bytes").arg(attempt.error).arg(received).arg(pin.length),
            remedyFor(attempt.obstacle));
    }
    if (!isPinned(part.fileName(), pin)) {
        part.remove();
        return problem(QStringLiteral("%1 with the pinned SHA-512").arg(name),
                       QStringLiteral("other bytes; they were deleted"), remedyFor(Obstacle::answer));
    }
    QFile::remove(path);
    if (!part.rename(path))
        return problem(QStringLiteral("to keep %1").arg(path), part.errorString(), remedyFor(Obstacle::disk));
    return {};
}

} // namespace Qorvane::Encoders
