#include "PackageServer.h"

#include <QTcpSocket>

#include <algorithm>

void PackageServer::greet()
{
    QTcpSocket *socket = nextPendingConnection();
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, request = QByteArray()]() mutable {
        request += socket->readAll();
        if (request.endsWith("\r\n\r\n"))
            answer(*socket, request);
    });
}

void PackageServer::answer(QTcpSocket &socket, const QByteArray &request)
{
    QByteArray range;
    for (const QByteArray &line : request.split('\n')) {
        if (line.toLower().startsWith("range:"))
            range = line.sliced(line.indexOf(':') + 1).trimmed();
    }
    m_ranges.append(range);
    if (m_refusal > 0) {
        socket.write("HTTP/1.1 " + QByteArray::number(m_refusal) + " No\r\nContent-Length: 0\r\n\r\n");
        socket.disconnectFromHost();
        return;
    }
    const QList<QByteArray> ends = range.sliced(range.indexOf('=') + 1).split('-');
    const bool isPart = m_knowsRanges && ends.size() == 2;
    qint64 first = isPart ? ends[0].toLongLong() : 0;
    if (m_fixedOffset >= 0)
        first = m_fixedOffset;
    const qint64 last =
        isPart ? std::min<qint64>(ends[1].toLongLong(), m_content.size() - 1) : m_content.size() - 1;
    const QByteArray body = m_content.sliced(first, std::max<qint64>(0, last - first + 1));
    QByteArray head = isPart ? "HTTP/1.1 206 Partial Content\r\nContent-Range: bytes " +
                                   QByteArray::number(first) + '-' + QByteArray::number(last) + '/' +
                                   QByteArray::number(m_content.size()) + "\r\n"
                             : QByteArray("HTTP/1.1 200 OK\r\n");
    socket.write(head + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n");
    socket.write(m_greatestAnswer < 0 ? body : body.first(std::min<qint64>(m_greatestAnswer, body.size())));
    socket.disconnectFromHost();
}
