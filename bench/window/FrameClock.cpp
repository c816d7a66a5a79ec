#include "window/FrameClock.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>

namespace Qorvane {

namespace {

constexpr double nanosecondsPerMillisecond = 1e6;
constexpr qint64 frameLength = 16'666'667; // nanoseconds
constexpr qint64 minute = 60'000'000'000;

qint64 now()
{
    return std::chrono::steady_clock::now().time_since_epoch().count();
}

qint64 processorTime()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

} // namespace

void FrameClock::run(int frameCount, const std::function<void(int)> &change)
{
    qint64 due = now();
    qint64 processor = processorTime();
    for (int frame = 0; frame < frameCount; ++frame) {
        change(frame);
        drawFrame();
        const qint64 drawn = now();
        m_frames.push_back(double(drawn - due) / nanosecondsPerMillisecond);
        m_processor.push_back(double(processorTime() - processor) / nanosecondsPerMillisecond);
        processor = processorTime();
        // A frame that came late is not made up for: the screen has shown the one before again.
        due = std::max(due + frameLength, drawn);
        waitUntil(due);
    }
}

bool FrameClock::runUntil(const std::function<bool()> &isDone)
{
    const qint64 begun = now();
    while (!isDone()) {
        if (now() - begun > minute)
            return false;
        run(1, [](int) {});
    }
    return true;
}

void FrameClock::clear()
{
    m_frames.clear();
    m_processor.clear();
}

double FrameClock::percentileOf(std::vector<double> values, double share)
{
    if (values.empty())
        return 0;
    std::ranges::sort(values);
    return values.at(std::size_t(std::ceil(share * double(values.size()))) - 1);
}

void FrameClock::drawFrame()
{
    bool isDrawn = false;
    const auto connection =
        QObject::connect(&m_window, &QQuickWindow::frameSwapped, &m_window, [&isDrawn] { isDrawn = true; });
    m_window.update();
    while (!isDrawn)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QObject::disconnect(connection);
}

void FrameClock::waitUntil(qint64 due)
{
    const qint64 left = due - now();
    if (left <= 0) {
        QCoreApplication::processEvents();
        return;
    }
    QEventLoop loop;
    QTimer::singleShot(std::chrono::milliseconds(left / 1'000'000), Qt::PreciseTimer, &loop,
                       &QEventLoop::quit);
    loop.exec();
}

} // namespace Qorvane
