#include "platform/NotificationCenter.h"

#include "platform/MainQueue.h"

#include <algorithm>
#include <condition_variable>
#include <thread>
#include <utility>

namespace Qorvane {

class NotificationCenter::Observer
{
public:
    Observer(QString observedName, ObserverQueue blockQueue, Block deliveredBlock)
        : name(std::move(observedName))
        , queue(blockQueue)
        , block(std::move(deliveredBlock))
    {
    }

    void deliver(const Notification &notification)
    {
        const std::thread::id caller = std::this_thread::get_id();
        {
            const std::scoped_lock lock(m_mutex);
            if (m_isRemoved)
                return;
            m_running.push_back(caller);
        }
        block(notification);
        {
            const std::scoped_lock lock(m_mutex);
            m_running.erase(std::find(m_running.begin(), m_running.end(), caller));
        }
        m_ended.notify_all();
    }

    void remove()
    {
        std::unique_lock lock(m_mutex);
        m_isRemoved = true;
        m_ended.wait(lock, [this, caller = std::this_thread::get_id()] {
            return std::all_of(m_running.begin(), m_running.end(),
                               [caller](std::thread::id thread) { return thread == caller; });
        });
    }

    const QString name;
    const ObserverQueue queue;
    const Block block;

private:
    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_isRemoved = false;
    std::vector<std::thread::id> m_running; // a thread stands here once for each block it is inside of
};

NotificationCenter &NotificationCenter::defaultCenter()
{
    // Lives until the process ends: background runs may still post when static objects go.
    static NotificationCenter *const instance = new NotificationCenter;
    return *instance;
}

NotificationCenter::Token NotificationCenter::addObserver(const QString &name, ObserverQueue queue,
                                                          Block block)
{
    auto observer = std::make_shared<Observer>(name, queue, std::move(block));
    const std::scoped_lock lock(m_mutex);
    m_observers.push_back(observer);
    return observer;
}

void NotificationCenter::removeObserver(const Token &token)
{
    std::shared_ptr<Observer> removed;
    {
        const std::scoped_lock lock(m_mutex);
        const auto found = std::find(m_observers.begin(), m_observers.end(), token);
        if (found == m_observers.end())
            return;
        removed = std::move(*found);
        m_observers.erase(found);
    }
    // Outside the lock, since this waits for a block, which may add, remove and post.
    removed->remove();
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
