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

    /// Ends an observation: a block that hasn't begun by then doesn't run, also one already queued. Any
    /// thread.
    void removeObserver(const Token &token);

    /// Delivers to the observers there are now, in the order they were added. Any thread.
    void post(const QString &name, const QVariantMap &userInfo = {});

private:
    struct Observer;

    std::mutex m_mutex;
    std::vector<std::shared_ptr<Observer>> m_observers;
};

} // namespace Qorvane
