#include "IdleWatch.h"

#include <utility>

namespace Qorvane {

namespace {

// One look may fall between two steps of the same work, when one has ended and the next is only queued.
constexpr int looksInARow = 2;

} // namespace

IdleWatch::IdleWatch(std::function<bool()> isBusy, std::chrono::milliseconds interval, QObject *parent)
    : QObject(parent)
    , m_isBusy(std::move(isBusy))
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &IdleWatch::look);
}

void IdleWatch::start()
{
    m_idleLooks = 0;
    m_timer.start();
}

void IdleWatch::look()
{
    const bool isBusy = m_isBusy();
    m_idleLooks = isBusy ? 0 : m_idleLooks + 1;
    if (m_idleLooks < looksInARow) {
        Q_EMIT looked(isBusy);
        return;
    }
    m_timer.stop();
    Q_EMIT idle();
}

} // namespace Qorvane
