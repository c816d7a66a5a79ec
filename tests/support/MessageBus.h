#pragma once

#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace Qorvane {

/// A session bus of the test's own, which the process takes for the desktop's. The address is read once in
/// the life of a process: start it once, in SetUpTestSuite, before anything asks for the bus.
class MessageBus
{
public:
    MessageBus();
    ~MessageBus();
    MessageBus(const MessageBus &) = delete;
    MessageBus &operator=(const MessageBus &) = delete;

    bool isRunning() const { return m_daemon.state() == QProcess::Running; }
    /// Ends the bus, as a desktop session that goes away does.
    void end();

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
};

/// Plays the desktop's file manager.
class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QStringList m_shown;

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &startupId);
};

} // namespace Qorvane
