#pragma once

#include <QQuickWindow>

#include <functional>
#include <vector>

namespace Qorvane {

/// Drives a window as a screen of 60 frames a second does, and takes the time of each frame: from when it was
/// due to be begun until it is drawn. What holds the GUI thread up between two frames counts for the second.
/// GUI thread.
class FrameClock
{
public:
    explicit FrameClock(QQuickWindow &window)
        : m_window(window)
    {
    }

    /// `change` is what the frame has to show; it is given the number of the frame.
    void run(int frameCount, const std::function<void(int frame)> &change);
    /// Frames until `isDone`, checked after each; false when that took longer than a minute.
    bool runUntil(const std::function<bool()> &isDone);

    /// Of the frames so far, in milliseconds.
    double percentile(double share) const { return percentileOf(m_frames, share); }
    double longest() const { return percentile(1); }
    /// The same in the GUI thread's own time on a processor, which other work on the machine doesn't
    /// lengthen.
    double processorPercentile(double share) const { return percentileOf(m_processor, share); }
    double longestOnProcessor() const { return processorPercentile(1); }
    void clear();

private:
    void drawFrame();
    static void waitUntil(qint64 due);
    static double percentileOf(std::vector<double> values, double share);

    QQuickWindow &m_window;
    std::vector<double> m_frames;
    std::vector<double> m_processor;
};

} // namespace Qorvane
