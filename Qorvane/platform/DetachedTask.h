#pragma once

#include "platform/QualityOfService.h"

#include <atomic>
#include <functional>
#include <memory>

namespace Qorvane {

/// The caller's end of a detached task. Copies stand for the same task. Cancelling only raises a flag,
/// which the task reads where it is willing to stop. Any thread.
class TaskHandle
{
public:
    TaskHandle()
        : m_isCancelled(std::make_shared<std::atomic_bool>(false))
    {
    }

    void cancel() const { m_isCancelled->store(true); }
    bool isCancelled() const { return m_isCancelled->load(); }

    /// Same task, not same state.
    friend bool operator==(const TaskHandle &, const TaskHandle &) = default;

private:
    std::shared_ptr<std::atomic_bool> m_isCancelled;
};

/// Work that inherits nothing from its caller and may take long: each has a thread while it runs, so one that
/// waits keeps no other from starting. What still runs when the process ends dies with it.
class DetachedTask
{
public:
    using Body = std::function<void(const TaskHandle &task)>;

    /// Starts `body` at `quality`; the handle it is given is the one returned. Any thread.
    static TaskHandle start(QualityOfService quality, Body body);

    /// Whether no detached task is running at this moment. Any thread.
    static bool isIdle();

    /// Waits until no detached task is running. For an orderly end of tests and tools.
    static void waitUntilIdle();
};

} // namespace Qorvane
