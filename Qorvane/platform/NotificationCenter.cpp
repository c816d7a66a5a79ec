#include "platform/NotificationCenter.h"

#include "platform/MainQueue.h"

#include <atomic>
#include <utility>

namespace Qorvane {

struct NotificationCenter::Observer
{
    QString name;
    ObserverQueue queue;
    Block block;
    std::atomic_bool isRemoved = false;

    void deliver(const Notification &notification) const
    {
        if (!isRemoved)
            block(notification);
    }
};

NotificationCenter &NotificationCenter::defaultCenter()
{
    static NotificationCenter instance;
    return instance;
}

NotificationCenter::Token NotificationCenter::addObserver(const QString &name, ObserverQueue queue,
                                                          Block block)
{
    auto observer = std::make_shared<Observer>();
    observer->name = name;
    observer->queue = queue;
    observer->block = std::move(block);
    const std::scoped_lock lock(m_mutex);
    m_observers.push_back(observer);
    return observer;
}

void NotificationCenter::removeObserver(const Token &token)
{
    const std::scoped_lock lock(m_mutex);
    std::erase_if(m_observers, [&token](const std::shared_ptr<Observer> &observer) {
        if (observer != token)
            return false;
        observer->isRemoved = true;
        return true;
    });
}

void NotificationCenter::post(const QString &name, const QVariantMap &userInfo)
{
    std::vector<std::shared_ptr<Observer>> receivers;
    {
        const std::scoped_lock lock(m_mutex);
        for (const std::shared_ptr<Observer> &observer : m_observers) {
            if (observer->name == name)
                receivers.push_back(observer);
        }
    }
    // Outside the lock, so that a block may add, remove and post.
    const Notification notification{name, userInfo};
    for (const std::shared_ptr<Observer> &observer : receivers) {
        switch (observer->queue) {
        case ObserverQueue::posting:
            observer->deliver(notification);
            break;
        case ObserverQueue::main:
            MainQueue::async([observer, notification] { observer->deliver(notification); });
            break;
        }
    }
}

} // namespace Qorvane
