#pragma once

#include <QObject>

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
    explicit QorvaneApp(QObject *parent = nullptr);
    ~QorvaneApp() override;

    /// The library; built on first use, never rebuilt.
    QorManage &qorManager();

    /// Shows the main window; false, with the reason on the console, when it can't be made.
    bool openMainWindow();
    /// Nothing while the main window is closed.
    ContentView *contentView() const { return m_contentView.get(); }

private:
    void appear();
    static void logLocations();

    std::unique_ptr<QorManage> m_qorManager;
    std::unique_ptr<ContentView> m_contentView; // after what it shows
};

} // namespace Qorvane
