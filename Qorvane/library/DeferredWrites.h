#pragma once

#include "platform/SerialQueue.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <initializer_list>
#include <memory>
#include <semaphore>

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

    /// `label` names the thread; `failure` begins the line about writes that were given up.
    explicit DeferredWrites(QByteArray label, QString failure = QStringLiteral("Error saving: "));
    /// Waits for what was asked for, but not for ever: what hangs is left to die with the process, and a line
    /// says so.
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

    /// Waits until everything asked of all of `writes` so far is written, but no longer than `seconds` in
    /// all; a line tells of each that didn't get there. Not from a write.
    static void finish(std::initializer_list<DeferredWrites *> writes, double seconds = patienceAtTheEnd);

    /// Whether nothing is left to write in the whole process at this moment.
    static bool isIdle();
    /// Waits until nothing is left to write in the whole process. For an orderly end of tests.
    static void waitUntilIdle();

private:
    using Mark = std::shared_ptr<std::binary_semaphore>;

    /// Released behind everything asked for so far.
    Mark mark();
    void tellOfLoss() const;

    const QString m_failure;
    std::unique_ptr<SerialQueue> m_queue;
};

} // namespace Qorvane
