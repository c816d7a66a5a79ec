#pragma once

#include "IdleWatch.h"
#include "library/LibraryTimings.h"

#include <QObject>
#include <QStringList>

#include <chrono>
#include <memory>

namespace Qorvane {

class ContentView;
class QorManage;

/// The application: owns what lives as long as the process, opens the windows, and does what belongs to the
/// first appearance of the main one. Holds no rule of the library's. GUI thread.
class QorvaneApp : public QObject
{
    Q_OBJECT

public:
    // Nobody waits for the end of a process without a window, and the records of a folder that was removed
    // just before it was closed go a second later.
    static constexpr std::chrono::milliseconds usualTimeBetweenLooks = std::chrono::seconds(1);

    /// Without its window the application looks every `betweenLooks` whether its work is done.
    explicit QorvaneApp(QObject *parent = nullptr, const LibraryTimings &timings = {},
                        std::chrono::milliseconds betweenLooks = usualTimeBetweenLooks);
    ~QorvaneApp() override;

    /// The library; built on first use, never rebuilt.
    QorManage &qorManager();

    /// Shows the main window, or brings it to the front; false, with the reason on the console, when it can't
    /// be made.
    bool openMainWindow();
    /// Nothing while the main window is closed.
    ContentView *contentView() const { return m_contentView.get(); }

    const IdleWatch &idleWatch() const { return m_idleWatch; }

    /// Does what another process of this program asks for, in the words of `InstanceMessage`.
    void obey(const QStringList &message);

Q_SIGNALS:
    /// The main window is closed and what it left in work is done: nothing holds the process any more.
    void finished();

private:
    bool isWorking() const;
    void dropClosedWindow();
    void appear();
    static void logLocations();

    const LibraryTimings m_timings;
    IdleWatch m_idleWatch;
    bool m_hasAppeared = false;
    std::unique_ptr<QorManage> m_qorManager;
    std::unique_ptr<ContentView> m_contentView; // after what it shows
};

} // namespace Qorvane
