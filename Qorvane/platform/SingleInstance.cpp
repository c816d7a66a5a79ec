#include "platform/SingleInstance.h"

#include "platform/Directories.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QThread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace Qorvane {

namespace {

// Both ends may be of different releases, as after an upgrade under a running program.
constexpr auto streamVersion = QDataStream::Qt_6_0;
constexpr char taken = '1';

// Room for thousands of paths; whoever sends more isn't one of ours.
constexpr qint64 longestMessage = 4 * 1024 * 1024;

// Between two tries: short beside a start of the program, long beside the try itself.
constexpr auto betweenTries = std::chrono::milliseconds(20);

// A socket's address holds little more than a hundred bytes, so the name is short.
constexpr qsizetype digitsOfHash = 12;

} // namespace

SingleInstance::SingleInstance(Place place, QObject *parent)
    : QObject(parent)
    , m_place(std::move(place))
{
}

SingleInstance::~SingleInstance()
{
    close();
    if (m_lock >= 0)
        ::close(m_lock);
}

SingleInstance::Place SingleInstance::libraryPlace()
{
    const std::optional<QString> support = Directories::applicationSupport();
    if (!support)
        return {};
    Place place;
    place.lock = *support + QStringLiteral("/Qorvane/library.lock");
    // The runtime folder serves all libraries, so the socket is named for the one that it leads to.
    if (const std::optional<QString> folder = Directories::runtime()) {
        const QByteArray hash = QCryptographicHash::hash(support->toUtf8(), QCryptographicHash::Sha256);
        place.socket = QStringLiteral("%1/qorvane-%2.socket")
                           .arg(*folder, QString::fromLatin1(hash.toHex().first(digitsOfHash)));
    }
    return place;
}

SingleInstance::Claim SingleInstance::claim(const std::optional<QStringList> &message,
                                            std::chrono::milliseconds patience)
{
    const QDeadlineTimer deadline(patience);
    while (true) {
        if (acquire())
            return Claim::first;
        if (message && send(*message, std::chrono::milliseconds(deadline.remainingTime())))
            return Claim::handedOver;
        if (deadline.hasExpired())
            return Claim::refused;
        QThread::usleep(std::chrono::microseconds(betweenTries).count());
    }
}

// The system's own lock rather than a file with a process id in it: it goes with the process, also when that
// is killed, and is never taken for another's.
bool SingleInstance::acquire()
{
    if (m_place.lock.isEmpty() || m_lock >= 0)
        return true;
    Directories::create(QFileInfo(m_place.lock).path());
    const int file = ::open(QFile::encodeName(m_place.lock).constData(),
                            O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (file < 0) {
        qWarning("%s can't be opened; nothing keeps a second process away", qUtf8Printable(m_place.lock));
        return true;
    }
    int result = 0;
    do {
        result = ::flock(file, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result != 0) {
        const bool isHeld = errno == EWOULDBLOCK;
        ::close(file);
        return !isHeld; // a file system without locks must not keep the program from starting
    }
    m_lock = file;
    return true;
}

bool SingleInstance::send(const QStringList &message, std::chrono::milliseconds patience) const
{
    if (m_place.socket.isEmpty())
        return false;
    const QDeadlineTimer deadline(patience);
    const auto remaining = [&deadline] { return int(std::max<qint64>(deadline.remainingTime(), 0)); };
    QLocalSocket socket;
    socket.connectToServer(m_place.socket);
    if (!socket.waitForConnected(remaining()))
        return false;
    QDataStream stream(&socket);
    stream.setVersion(streamVersion);
    stream << message;
    // The answer says that the message was understood, not only that the system has it.
    while (socket.bytesAvailable() == 0) {
        if (!socket.waitForReadyRead(remaining()))
            return false;
    }
    char answer = 0;
    return socket.getChar(&answer) && answer == taken;
}

bool SingleInstance::listen()
{
    if (m_place.socket.isEmpty())
        return false;
    // We hold the lock, so a socket that lies there is left over from a process that was killed.
    QLocalServer::removeServer(m_place.socket);
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *const client = m_server->nextPendingConnection())
            serve(client);
    });
    if (m_server->listen(m_place.socket))
        return true;
    qWarning("later starts can't reach this one through %s: %s", qUtf8Printable(m_place.socket),
             qUtf8Printable(m_server->errorString()));
    return false;
}

void SingleInstance::close()
{
    m_server.reset();
}

void SingleInstance::serve(QLocalSocket *client)
{
    connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
    const auto read = [this, client] {
        QDataStream stream(client);
        stream.setVersion(streamVersion);
        QStringList message;
        stream.startTransaction();
        stream >> message;
        if (!stream.commitTransaction()) {
            if (stream.status() != QDataStream::ReadPastEnd || client->bytesAvailable() > longestMessage)
                client->abort();
            return; // the rest is on its way
        }
        // Whoever receives it may close the server, and the connection with it.
        const QPointer<QLocalSocket> answered(client);
        Q_EMIT messageReceived(message);
        if (answered) {
            answered->putChar(taken);
            answered->flush();
        }
    };
    connect(client, &QLocalSocket::readyRead, this, read);
    if (client->bytesAvailable() > 0)
        read();
}

} // namespace Qorvane
