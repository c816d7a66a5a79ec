#include "platform/QualityOfService.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <semaphore>
#include <thread>

namespace Qorvane {

namespace {

thread_local QualityOfService currentQuality = QualityOfService::userInitiated;

// Niceness per class: 0 is the window's own; 19 is the weakest there is and yields almost the whole
// processor to anything else that wants it; 5 leaves utility work behind the window but well before that.
int niceness(QualityOfService quality)
{
    switch (quality) {
    case QualityOfService::userInitiated:
        return 0;
    case QualityOfService::utility:
        return 5;
    case QualityOfService::background:
        return 19;
    }
    return 0;
}

// Lends its weight to threads that have given theirs away.
class FullWeightThread
{
public:
    FullWeightThread()
    {
        std::thread([this] { run(); }).detach();
    }

    void sync(const std::function<void()> &block)
    {
        Order order{&block};
        {
            const std::scoped_lock lock(m_mutex);
            m_orders.push_back(&order);
        }
        m_wake.notify_one();
        order.done.acquire();
    }

private:
    struct Order
    {
        const std::function<void()> *block;
        std::binary_semaphore done{0};
    };

    void run()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_wake.wait(lock, [this] { return !m_orders.empty(); });
            Order *order = m_orders.front();
            m_orders.pop_front();
            lock.unlock();
            (*order->block)();
            order->done.release();
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Order *> m_orders;
};

FullWeightThread &fullWeightThread()
{
    // Never taken down: threads may be started until the very end of the process.
    static FullWeightThread &instance = *std::make_unique<FullWeightThread>().release();
    return instance;
}

} // namespace

void applyToCurrentThread(QualityOfService quality)
{
    const int value = niceness(quality);
    if (value == 0)
        return;
    // On Linux niceness belongs to the thread when it is addressed by its own id.
    setpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)), value);
    currentQuality = quality;
}

QualityOfService qualityOfCurrentThread()
{
    return currentQuality;
}

void withFullWeight(const std::function<void()> &block)
{
    // Made before any thread of ours can have been weakened, since each of those is started through here.
    FullWeightThread &lender = fullWeightThread();
    if (currentQuality != QualityOfService::userInitiated)
        lender.sync(block);
    else
        block();
}

} // namespace Qorvane
