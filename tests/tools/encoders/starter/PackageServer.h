#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>
#include <QUrl>

/// A server on this machine that has one file, and can behave badly.
class PackageServer : public QTcpServer
{
public:
    explicit PackageServer(QByteArray content)
        : m_content(std::move(content))
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, &PackageServer::greet);
    }

    QUrl address() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/a.tgz").arg(serverPort())); }

    /// Each answer ends after so many bytes, with the connection.
    void breakAfter(qint64 bytes) { m_greatestAnswer = bytes; }
    /// Ranges are passed over, as servers may do.
    void ignoreRanges() { m_knowsRanges = false; }
    /// Whatever is asked for, the answer begins here.
    void answerFrom(qint64 offset) { m_fixedOffset = offset; }
    /// Every request is answered so.
    void refuseWith(int status) { m_refusal = status; }

    /// The "Range" of each request, in order.
    const QList<QByteArray> &ranges() const { return m_ranges; }

private:
    void greet();
    void answer(class QTcpSocket &socket, const QByteArray &request);

    QByteArray m_content;
    qint64 m_greatestAnswer = -1;
    qint64 m_fixedOffset = -1;
    bool m_knowsRanges = true;
    int m_refusal = 0;
    QList<QByteArray> m_ranges;
};
