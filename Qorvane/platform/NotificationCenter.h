#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace Qorvane {

struct Notification
{
    QString name;
    QVariantMap userInfo;
};

/// Where an observer's block runs.
enum class ObserverQueue {
    posting, ///< on the thread that posts, before `post` returns
    main,    ///< on the GUI thread, later
};

/// Messages by name between parts that don't know each other. Safe from any thread; an observer may be
/// added or removed from inside a block.
class NotificationCenter
{
public:
    using Block = std::function<void(const Notification &notification)>;
    /// Stands for one observation; empty when there is none.
    using Token = std::shared_ptr<const void>;

    /// The one centre that the parts of the program share.
    static NotificationCenter &defaultCenter();

    /// Calls `block` for every notification of `name` until the token is removed. Any thread.
    [[nodiscard]] Token addObserver(const QString &name, ObserverQueue queue, Block block);

    /// Ends an observation: the block isn't run again, also where that is queued already, and one that is
    /// running on another thread has ended when this returns, so that what it uses may go away. From inside
    /// the block it returns at once. Not while holding what the block may be waiting for. Any thread.
    void removeObserver(const Token &token);

    /// Delivers to the observers there are now, in the order they were added. Any thread.
    void post(const QString &name, const QVariantMap &userInfo = {});

private:
    class Observer;

    std::mutex m_mutex;
    std::vector<std::shared_ptr<Observer>> m_observers;
};

} // namespace Qorvane
