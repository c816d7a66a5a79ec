#include "platform/Workspace.h"

#include "platform/GlobalQueue.h"
#include "support/MessageBus.h"
#include "support/RecordingApplication.h"
#include "support/Waiting.h"

#include <QDBusConnection>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>

using namespace Qorvane;

namespace {

class WorkspaceTest : public testing::Test
{
protected:
    // Once for all: the library that reads the desktop entries notices new ones only after a while.
    static void SetUpTestSuite()
    {
        s_folder = std::make_unique<QTemporaryDir>();
        s_application = std::make_unique<RecordingApplication>(s_folder->path());
        writeFile(applications() + QStringLiteral("/org.example.Editor.desktop"),
                  s_application->entry("image/vnd.adobe.photoshop;inode/directory;"
                                       "x-scheme-handler/https;text/plain;"));
        writeFile(applications() + QStringLiteral("/org.example.Gone.desktop"),
                  "[Desktop Entry]\nType=Application\nName=Gone\nExec=/no/such/program %U\n");
        writeFile(applications() + QStringLiteral("/mimeapps.list"),
                  "[Default Applications]\nimage/vnd.adobe.photoshop=org.example.Editor.desktop\n"
                  "inode/directory=org.example.Editor.desktop\n"
                  "text/plain=org.example.Editor.desktop\n"
                  "x-scheme-handler/https=org.example.Editor.desktop\n");
        s_bus = std::make_unique<MessageBus>();
        ASSERT_TRUE(s_bus->isRunning());
    }
    static void TearDownTestSuite()
    {
        s_bus.reset();
        s_application.reset();
        s_folder.reset();
    }

    ~WorkspaceTest() override
    {
        GlobalQueue::waitUntilIdle();
        s_application->forget();
    }

    static inline std::unique_ptr<MessageBus> s_bus;
    static inline std::unique_ptr<QTemporaryDir> s_folder;
    static inline std::unique_ptr<RecordingApplication> s_application;
};

TEST_F(WorkspaceTest, anInstalledApplicationIsFoundByItsIdentifier)
{
    EXPECT_EQ(Workspace::applicationWithIdentifier(QStringLiteral("org.example.Editor")),
              applications() + QStringLiteral("/org.example.Editor.desktop"));
}

TEST_F(WorkspaceTest, anApplicationThatIsAbsentOrCannotRunIsNotFound)
{
    EXPECT_FALSE(Workspace::applicationWithIdentifier(QStringLiteral("com.example.Absent")).has_value());
    EXPECT_FALSE(Workspace::applicationWithIdentifier(QStringLiteral("org.example.Gone")).has_value());
    EXPECT_FALSE(Workspace::applicationWithIdentifier(QString()).has_value());
}

TEST_F(WorkspaceTest, theDefaultApplicationGoesByTheExtensionOfAFileThatNeedNotExist)
{
    EXPECT_EQ(Workspace::applicationToOpen(QStringLiteral("dummy.psd")),
              applications() + QStringLiteral("/org.example.Editor.desktop"));
    EXPECT_FALSE(Workspace::applicationToOpen(QStringLiteral("dummy.no-such-type-at-all")).has_value());
}

TEST_F(WorkspaceTest, opensFilesWithAnApplication)
{
    const QString path = s_folder->filePath(QStringLiteral("照片 1%20 #2?.psd"));
    std::atomic_bool isDone = false;
    std::optional<QString> failure;
    Workspace::open({FileUrl::file(path)}, applications() + QStringLiteral("/org.example.Editor.desktop"),
                    [&](const std::optional<QString> &error) {
                        failure = error;
                        isDone = true;
                    });
    ASSERT_TRUE(waitUntil([&isDone] { return isDone.load(); }));
    EXPECT_FALSE(failure.has_value()) << failure->toStdString();
    ASSERT_TRUE(s_application->waitUntilStarted());

    ASSERT_EQ(s_application->arguments().size(), 1);
    EXPECT_EQ(localPath(s_application->arguments().value(0)), path);
}

TEST_F(WorkspaceTest, tellsWhyAnApplicationCouldNotBeStarted)
{
    std::atomic_bool isDone = false;
    std::optional<QString> failure;
    Workspace::open({FileUrl::file(QStringLiteral("/a.psd"))},
                    applications() + QStringLiteral("/org.example.Gone.desktop"),
                    [&](const std::optional<QString> &error) {
                        failure = error;
                        isDone = true;
                    });
    ASSERT_TRUE(waitUntil([&isDone] { return isDone.load(); }));
    ASSERT_TRUE(failure.has_value());
    EXPECT_TRUE(failure->contains(QStringLiteral("org.example.Gone.desktop")));
}

TEST_F(WorkspaceTest, opensAFolderAndAPageInTheirDefaultApplications)
{
    Workspace::open(FileUrl::directory(s_folder->path()));
    ASSERT_TRUE(s_application->waitUntilStarted());
    EXPECT_EQ(localPath(s_application->arguments().value(0)), s_folder->path());

    s_application->forget();
    Workspace::open(QUrl(QStringLiteral("https://updates.qorvane.example/notes?v=1 2")));
    ASSERT_TRUE(s_application->waitUntilStarted());
    EXPECT_EQ(s_application->arguments().value(0),
              QStringLiteral("https://updates.qorvane.example/notes?v=1%202"));
}

TEST_F(WorkspaceTest, withoutAFileManagerOnTheBusTheFolderIsOpened)
{
    Workspace::showInFileManager({FileUrl::file(s_folder->filePath(QStringLiteral("a.jpg"))),
                                  FileUrl::file(s_folder->filePath(QStringLiteral("b.jpg")))});
    ASSERT_TRUE(s_application->waitUntilStarted());
    EXPECT_EQ(s_application->arguments().size(), 1);
    EXPECT_EQ(localPath(s_application->arguments().value(0)), s_folder->path());
}

TEST_F(WorkspaceTest, theFileManagerOnTheBusIsAskedToSelectTheFiles)
{
    const QString connectionName = QStringLiteral("file manager");
    FileManager fileManager;
    {
        QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
        ASSERT_TRUE(bus.isConnected());
        ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &fileManager,
                                       QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.FileManager1")));
    }

    const QString path = s_folder->filePath(QStringLiteral("été #1.jpg"));
    Workspace::showInFileManager({FileUrl::file(path)});
    ASSERT_TRUE(waitUntil([&fileManager] { return !fileManager.m_shown.isEmpty(); }));
    EXPECT_EQ(fileManager.m_shown, QStringList{FileUrl::file(path).absoluteString()});

    GlobalQueue::waitUntilIdle();
    QDBusConnection::disconnectFromBus(connectionName);
    EXPECT_TRUE(s_application->arguments().isEmpty());
}

// Last, since the bus doesn't come back.
TEST_F(WorkspaceTest, withoutABusTheFolderIsOpened)
{
    s_bus->end();
    ASSERT_FALSE(s_bus->isRunning());
    Workspace::showInFileManager({FileUrl::file(s_folder->filePath(QStringLiteral("a.jpg")))});
    ASSERT_TRUE(s_application->waitUntilStarted());
    EXPECT_EQ(localPath(s_application->arguments().value(0)), s_folder->path());
}

} // namespace
