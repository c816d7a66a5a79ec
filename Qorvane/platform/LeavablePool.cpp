#include "platform/LeavablePool.h"

#include "platform/WorkerPools.h"

#include <deque>
#include <limits>
#include <mutex>
#include <utility>

namespace Qorvane {

namespace {

// Each pool keeps its own limit. Never taken down: that would hold up the end of the process until the last
// turn is over.
WorkerPools &threads()
{
    static WorkerPools &instance = *std::make_unique<WorkerPools>(std::numeric_limits<int>::max()).release();
    return instance;
}

} // namespace

// What the threads share with the pool, and outlive it with.
class LeavablePool::Turns
{
public:
    explicit Turns(int threadCount)
        : m_freeThreads(threadCount)
    {
    }

    /// Whether one more thread has to run the turns.
    bool add(Turn turn)
    {
        const std::scoped_lock lock(m_mutex);
        m_waiting.push_back(std::move(turn));
        if (m_freeThreads == 0)
            return false;
        --m_freeThreads;
        return true;
    }

    void run()
    {
        while (const Turn turn = next())
            turn();
    }

    void drop()
    {
        std::deque<Turn> dropped; // goes without the lock: it may lead to anything
        const std::scoped_lock lock(m_mutex);
        dropped.swap(m_waiting);
    }

private:
    Turn next()
    {
        const std::scoped_lock lock(m_mutex);
        if (m_waiting.empty()) {
            ++m_freeThreads;
            return {};
        }
        Turn turn = std::move(m_waiting.front());
        m_waiting.pop_front();
        return turn;
    }

    std::mutex m_mutex;
    std::deque<Turn> m_waiting;
    int m_freeThreads;
};

LeavablePool::LeavablePool(QualityOfService quality, int threadCount)
    : m_quality(quality)
    , m_turns(std::make_shared<Turns>(threadCount))
{
}

LeavablePool::~LeavablePool()
{
    m_turns->drop();
}

void LeavablePool::start(Turn turn)
{
    if (m_turns->add(std::move(turn)))
        threads().start(m_quality, [turns = m_turns] { turns->run(); });
}

bool LeavablePool::isIdle()
{
    return threads().isIdle();
}

void LeavablePool::waitUntilIdle()
{
    threads().waitUntilIdle();
}

} // namespace Qorvane
