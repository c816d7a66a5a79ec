#pragma once

#include <QObject>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

class QLocalServer;
class QLocalSocket;

namespace Qorvane {

/// One process at a time per place, for the program's own use: per library of a user. The first holds a lock
/// for as long as it lives, however it ends, and takes messages from those that come later. GUI thread.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Claim {
        first,      ///< this process is the one
        handedOver, ///< another is, and has taken the message
        refused,    ///< another is, and didn't take a message in time
    };

    struct Place
    {
        /// The path of the lock, beside what it protects: whoever can reach the one finds the other, from
        /// whatever session or job. Its folder is made when it isn't there. Empty: every process is the
        /// first.
        QString lock;
        /// The path of the socket, in an existing folder of the user's own. Empty: nothing is handed over.
        QString socket;

        friend bool operator==(const Place &, const Place &) = default;
    };

    explicit SingleInstance(Place place, QObject *parent = nullptr);
    /// Lets the next process be the first.
    ~SingleInstance() override;

    /// The place for the library in the user's application data.
    static Place libraryPlace();

    /// Becomes the first process, or hands `message` to the one that is; without a message it only waits for
    /// its turn. Tries for `patience`, since the other may be about to begin or to end. Blocks.
    Claim claim(const std::optional<QStringList> &message, std::chrono::milliseconds patience);

    /// The first process takes messages from now on; false when it can't, with the reason on the console, and
    /// then later ones are refused.
    bool listen();
    /// Takes no more messages; later processes wait for this one's end.
    void close();

Q_SIGNALS:
    /// A later process has handed this over. It is told so when all who are connected have seen it.
    void messageReceived(const QStringList &message);

private:
    bool acquire();
    bool send(const QStringList &message, std::chrono::milliseconds patience) const;
    void serve(QLocalSocket *client);

    const Place m_place;
    int m_lock = -1;
    std::unique_ptr<QLocalServer> m_server;
};

} // namespace Qorvane
