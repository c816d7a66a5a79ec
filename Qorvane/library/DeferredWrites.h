#pragma once

#include "platform/SerialQueue.h"

#include <QByteArray>

#include <functional>
#include <memory>

class QObject;

namespace Qorvane {

/// Writes that the GUI thread asks for and doesn't wait for: they run in the background, one after the other,
/// in the order they were asked for. Any thread.
class DeferredWrites
{
public:
    using Block = std::function<void()>;

    /// How long the end of the program waits, in seconds, for what is still to be written. A healthy disk
    /// needs milliseconds; one that doesn't answer is not to keep the window from closing.
    static constexpr double patienceAtTheEnd = 3;

    /// `label` names the thread.
    explicit DeferredWrites(QByteArray label);
    /// Waits for what was asked for, but not for ever: what hangs is left to die with the process.
    ~DeferredWrites();
    DeferredWrites(const DeferredWrites &) = delete;
    DeferredWrites &operator=(const DeferredWrites &) = delete;

    /// Queues `write` and returns at once.
    void perform(Block write);
    /// The same; when it is written, `then` runs on the GUI thread, unless `context` is gone by then.
    void perform(Block write, QObject *context, Block then);

    /// Waits until everything asked for so far is written, so that what is read afterwards holds it. Not from
    /// the GUI thread, nor from a write.
    void wait();
    /// The same for at most so many seconds; false when that was too short.
    bool wait(double seconds);

    /// Waits until nothing is left to write in the whole process. For an orderly end of tests.
    static void waitUntilIdle();

private:
    std::unique_ptr<SerialQueue> m_queue;
};

} // namespace Qorvane
