#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>

namespace Qorvane {

/// Looks now and then whether work is still being done, and tells when it is over. GUI thread.
class IdleWatch : public QObject
{
    Q_OBJECT

public:
    /// `isBusy` is asked every `interval`.
    IdleWatch(std::function<bool()> isBusy, std::chrono::milliseconds interval, QObject *parent = nullptr);

    /// Begins to look, from the beginning if it does already.
    void start();
    void stop() { m_timer.stop(); }

Q_SIGNALS:
    /// After each look but the one that ends the watch.
    void looked(bool isBusy);
    /// Nothing was being done at several looks in a row. Once; the watch has stopped.
    void idle();

private:
    void look();

    const std::function<bool()> m_isBusy;
    QTimer m_timer;
    int m_idleLooks = 0;
};

} // namespace Qorvane
