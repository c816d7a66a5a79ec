#include "QorvaneApp.h"

#include "library/DeferredWrites.h"
#include "library/QorManage.h"
#include "media/EmbeddingMessages.h"
#include "platform/DetachedTask.h"
#include "platform/GlobalQueue.h"
#include "platform/InstanceMessage.h"
#include "platform/MainQueue.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "support/ConsoleWatch.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"
#include "views/window/ContentView.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QLockFile>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>
#include <utility>

using namespace Qorvane;

namespace {

const QString libraryFolders = QStringLiteral("libraryFolders");
const QString syncLine = QStringLiteral("🔄 启动时检查文件夹同步状态...");

/// Holds the run where it asks for its first picture's embedding, until it is opened.
class RunGate
{
public:
    RunGate()
        : m_token(NotificationCenter::defaultCenter().addObserver(
              EmbeddingMessages::requestName, ObserverQueue::posting, [this](const Notification &) {
                  m_isReached = true;
                  m_mayGoOn.acquire();
                  m_mayGoOn.release();
              }))
    {
    }
    ~RunGate()
    {
        open();
        NotificationCenter::defaultCenter().removeObserver(m_token);
        DetachedTask::waitUntilIdle();
    }
    RunGate(const RunGate &) = delete;
    RunGate &operator=(const RunGate &) = delete;

    bool isReached() const { return m_isReached; }
    void open()
    {
        if (!std::exchange(m_isOpen, true))
            m_mayGoOn.release();
    }

private:
    std::atomic_bool m_isReached = false;
    std::counting_semaphore<> m_mayGoOn{0};
    bool m_isOpen = false;
    NotificationCenter::Token m_token;
};

/// The whole application on a library that is empty at each start.
class QorvaneAppTest : public testing::Test
{
protected:
    // Without a window every embedding runs into its time-out.
    static constexpr LibraryTimings quick{0.01, 0.01, 0.01, 0.01};

    QorvaneAppTest() { UserDefaults::standard().remove(libraryFolders); }
    ~QorvaneAppTest() override { UserDefaults::standard().remove(libraryFolders); }

    static bool hasAppeared(const LogCapture &log) { return appearances(log) > 0; }
    static qsizetype appearances(const LogCapture &log)
    {
        return log.linesStartingWith(QStringLiteral("🖼️ 缩略图目录: ")).size();
    }

    // Past everything that a start can set going: the steps that it queues, and the wait before the line.
    static void passTheStart()
    {
        constexpr int moreStepsThanAStartHas = 10;
        for (int i = 0; i < moreStepsThanAStartHas; ++i) {
            DeferredWrites::waitUntilIdle();
            GlobalQueue::waitUntilIdle();
            drainMainQueue();
        }
        bool isPast = false;
        MainQueue::after(2 * quick.untilStartupSync, [&isPast] { isPast = true; });
        ASSERT_TRUE(waitUntil([&isPast] { return isPast; }));
    }

    // The application with looks that a test can count.
    static constexpr std::chrono::milliseconds betweenLooks{20};

    QString makePictures(int count) const
    {
        const QString folder = m_place.filePath(QStringLiteral("Photos"));
        EXPECT_TRUE(QDir().mkpath(folder));
        QImage picture(1200, 900, QImage::Format_RGB32);
        for (int i = 0; i < count; ++i) {
            picture.fill(QColor::fromHsv(i * 40 % 360, 200, 220));
            EXPECT_TRUE(picture.save(QStringLiteral("%1/%2.jpg").arg(folder).arg(i)));
        }
        return folder;
    }

    static void close(const QorvaneApp &app) { app.contentView()->window()->close(); }

    const ConsoleWatch m_console;
    const QTemporaryDir m_place{QDir::temp().filePath(QStringLiteral("QorvaneAppXXXXXX"))};
};

} // namespace

TEST_F(QorvaneAppTest, logsItsLocationsWhenTheMainWindowAppears)
{
    const LogCapture log;
    QorvaneApp app;
    ASSERT_TRUE(app.openMainWindow());
    ASSERT_TRUE(waitUntil([&] { return hasAppeared(log); }));

    const QString data = qEnvironmentVariable("XDG_DATA_HOME");
    const QString cache = qEnvironmentVariable("XDG_CACHE_HOME");
    const QStringList expected{
        QStringLiteral("🚀 Qorvane 应用启动"), QStringLiteral("📁 应用支持目录: %1/Qorvane").arg(data),
        QStringLiteral("🗄️ 数据库文件: %1/Qorvane/embeddings.sqlite3").arg(data),
        QStringLiteral("🖼️ 缩略图目录: %1/com.qorvane.thumbnails").arg(cache)};
    const qsizetype first = log.lines().indexOf(expected.first());
    ASSERT_GE(first, 0);
    QStringList logged;
    for (const QString &line : log.lines()) {
        if (expected.contains(line))
            logged.append(line);
    }
    EXPECT_EQ(logged, expected);
}

TEST_F(QorvaneAppTest, theEncodersAreLoadedBehindTheWindowUnasked)
{
    const LogCapture log;
    QorvaneApp app;
    ASSERT_TRUE(app.openMainWindow());
    EXPECT_TRUE(
        waitUntil([&] { return !log.linesStartingWith(QStringLiteral("🔍 开始加载模型")).isEmpty(); }));
    EXPECT_TRUE(hasAppeared(log)) << "the window comes first";
    EXPECT_FALSE(app.qorManager().selectedFolder());
    EXPECT_EQ(app.contentView()->state().search()->text(), QString());
}

TEST_F(QorvaneAppTest, theSidebarHasTheKeysOnceTheWindowIsThere)
{
    QorvaneApp app;
    ASSERT_TRUE(app.openMainWindow());
    QQuickWindow *const window = app.contentView()->window();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    EXPECT_TRUE(waitUntil(
        [&] { return window->findChild<QQuickItem *>(QStringLiteral("sidebarList"))->hasActiveFocus(); }));
}

TEST_F(QorvaneAppTest, aFirstStartHasAnEmptyLibraryAndSynchronisesNothing)
{
    const LogCapture log;
    QorvaneApp app(nullptr, quick);
    ASSERT_TRUE(app.openMainWindow());
    ASSERT_TRUE(waitUntil([&] { return hasAppeared(log); }));
    passTheStart();
    EXPECT_TRUE(app.qorManager().libraryFolders().isEmpty());
    EXPECT_FALSE(app.qorManager().selectedFolder());
    EXPECT_FALSE(log.contains(syncLine));
}

// What keeps the test before this one from being content with a wait that is too short.
TEST_F(QorvaneAppTest, aLaterStartSynchronises)
{
    UserDefaults::standard().setDataArray(libraryFolders, {m_place.path().toUtf8()});
    const LogCapture log;
    QorvaneApp app(nullptr, quick);
    ASSERT_TRUE(app.openMainWindow());
    passTheStart();
    EXPECT_EQ(app.qorManager().libraryFolders().size(), 1);
    EXPECT_TRUE(log.contains(syncLine));
}

TEST_F(QorvaneAppTest, buildsTheLibraryOnce)
{
    QorvaneApp app;
    EXPECT_EQ(&app.qorManager(), &app.qorManager());
}

TEST_F(QorvaneAppTest, closingTheMainWindowLeavesTheLibrary)
{
    const LogCapture log;
    QorvaneApp app;
    ASSERT_TRUE(app.openMainWindow());
    ASSERT_TRUE(waitUntil([&] { return hasAppeared(log); }));
    QorManage *const library = &app.qorManager();
    app.contentView()->window()->close();
    ASSERT_TRUE(waitUntil([&] { return app.contentView() == nullptr; }));
    EXPECT_EQ(&app.qorManager(), library);
}

TEST_F(QorvaneAppTest, withNothingInWorkAClosedWindowEndsTheApplication)
{
    const LogCapture log;
    QorvaneApp app;
    QSignalSpy ends(&app, &QorvaneApp::finished);
    ASSERT_TRUE(app.openMainWindow());
    ASSERT_TRUE(waitUntil([&] { return hasAppeared(log); }));
    close(app);
    EXPECT_TRUE(waitUntil([&] { return ends.count() == 1; }));
    EXPECT_EQ(app.contentView(), nullptr);
}

TEST_F(QorvaneAppTest, aRunInWorkGoesOnWithoutTheWindowAndThenTheApplicationEnds)
{
    constexpr int pictures = 8;
    const LogCapture log;
    QorvaneApp app(nullptr, quick, betweenLooks);
    RunGate gate;
    const QString folder = makePictures(pictures);
    const QString completed = QStringLiteral("✅ 状态更新为完成: ") + folder;
    ASSERT_TRUE(app.openMainWindow());
    ASSERT_TRUE(waitUntil([&] { return hasAppeared(log); }));
    app.qorManager().addFolder(FileUrl::directory(folder));
    ASSERT_TRUE(waitUntil([&gate] { return gate.isReached(); }));

    bool wasCompletedAtTheEnd = false;
    QSignalSpy ends(&app, &QorvaneApp::finished);
    QObject::connect(&app, &QorvaneApp::finished, [&] { wasCompletedAtTheEnd = log.contains(completed); });
    int busyLooks = 0;
    QObject::connect(&app.idleWatch(), &IdleWatch::looked, &app,
                     [&busyLooks](bool isBusy) { busyLooks += isBusy ? 1 : 0; });
    close(app);
    ASSERT_TRUE(waitUntil([&] { return app.contentView() == nullptr; }));
    ASSERT_TRUE(waitUntil([&] { return busyLooks > 2; }));
    ASSERT_FALSE(log.contains(completed));
    // Each request that reaches somebody who embeds leaves this line, as there are no encoders here.
    const auto answers = [&log] {
        return log.linesStartingWith(QStringLiteral("❌ Models not loaded")).size();
    };
    const qsizetype answersWithTheWindow = answers();
    gate.open();
    ASSERT_TRUE(waitUntil([&] { return ends.count() == 1; }));
    EXPECT_TRUE(wasCompletedAtTheEnd);
    EXPECT_EQ(answers(), answersWithTheWindow);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌ 向量生成失败: ")).size(), pictures);
}

TEST_F(QorvaneAppTest, reopenedWhileARunIsInWorkTheWindowShowsWhatItShowed)
{
    const LogCapture log;
    QorvaneApp app(nullptr, quick);
    const QString folder = makePictures(8);
    ASSERT_TRUE(app.openMainWindow());
    app.qorManager().addFolder(FileUrl::directory(folder));
    ASSERT_TRUE(waitUntil([&] { return app.qorManager().imageURLs().size() == 8; }));
    close(app);
    ASSERT_TRUE(waitUntil([&] { return app.contentView() == nullptr; }));

    QSignalSpy ends(&app, &QorvaneApp::finished);
    app.obey(InstanceMessage::show());
    ASSERT_NE(app.contentView(), nullptr);
    EXPECT_TRUE(app.contentView()->isShown());
    EXPECT_EQ(app.contentView()->state().pages()->title(), QStringLiteral("Photos"));
    EXPECT_EQ(app.contentView()->state().pages()->photos()->count(), 8);
    EXPECT_FALSE(app.contentView()->state().sidebar()->isLibraryEmpty());
    // Its closing begins the wait anew: the end came from this one, not from the first.
    EXPECT_EQ(ends.count(), 0);
    close(app);
    EXPECT_TRUE(waitUntil([&] { return ends.count() == 1; }));
    EXPECT_EQ(appearances(log), 1);
}

TEST_F(QorvaneAppTest, aWindowShownAgainBeforeItIsDroppedStays)
{
    QorvaneApp app;
    ASSERT_TRUE(app.openMainWindow());
    ContentView *const view = app.contentView();
    close(app);
    ASSERT_TRUE(app.openMainWindow());
    drainMainQueue();
    ASSERT_EQ(app.contentView(), view);
    EXPECT_TRUE(view->isShown());
}

TEST_F(QorvaneAppTest, controlQEndsTheProgram)
{
    QorvaneApp app;
    ASSERT_TRUE(app.openMainWindow());
    ASSERT_TRUE(QTest::qWaitForWindowActive(app.contentView()->window()));
    MainQueue::async(
        [&app] { QTest::keyPress(app.contentView()->window(), Qt::Key_Q, Qt::ControlModifier); });
    constexpr int neverAsked = 1;
    MainQueue::after(60, [] { QCoreApplication::exit(neverAsked); });
    EXPECT_EQ(QGuiApplication::exec(), 0);
}

TEST_F(QorvaneAppTest, aMinimisedWindowComesBack)
{
    QorvaneApp app;
    ASSERT_TRUE(app.openMainWindow());
    app.contentView()->window()->showMinimized();
    EXPECT_TRUE(app.contentView()->isShown());
    app.obey(InstanceMessage::show());
    EXPECT_FALSE(app.contentView()->window()->windowStates() & Qt::WindowMinimized);
}

TEST_F(QorvaneAppTest, foldersHandedOverAtTheVeryStartJoinThoseOfEarlierRuns)
{
    const QString earlier = m_place.filePath(QStringLiteral("earlier"));
    const QString added = m_place.filePath(QStringLiteral("added"));
    ASSERT_TRUE(QDir().mkpath(earlier) && QDir().mkpath(added));
    UserDefaults::standard().setDataArray(libraryFolders, {earlier.toUtf8()});
    QorvaneApp app;
    app.obey(InstanceMessage::add({added}));
    ASSERT_TRUE(waitUntil([&] { return app.qorManager().libraryFolders().size() == 2; }));
    EXPECT_EQ(app.qorManager().libraryFolders().constFirst().url, FileUrl::directory(earlier));
    EXPECT_EQ(app.contentView(), nullptr); // a folder is no reason to come to the front
    const QList<QByteArray> both{earlier.toUtf8(), added.toUtf8()};
    EXPECT_TRUE(waitUntil([&both] { return UserDefaults::standard().dataArray(libraryFolders) == both; }));
}

TEST_F(QorvaneAppTest, aFolderThatIsNotStoredYetKeepsTheApplicationWithoutItsWindow)
{
    LibraryTimings impatient = quick;
    impatient.bookmarkPatience = 0.01; // the run is over long before the folder is stored
    const LogCapture log;
    QorvaneApp app(nullptr, impatient, betweenLooks);
    ASSERT_TRUE(app.openMainWindow());
    ASSERT_TRUE(waitUntil([&] { return hasAppeared(log); }));
    passTheStart();
    QLockFile disk(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Qorvane/Qorvane.ini.lock"));
    disk.setStaleLockTime(0); // never taken over
    ASSERT_TRUE(disk.tryLock());
    app.qorManager().addFolder(FileUrl::directory(makePictures(1)));
    close(app);
    ASSERT_TRUE(waitUntil([&] { return app.contentView() == nullptr; }));

    bool wasStoredAtTheEnd = false;
    QSignalSpy ends(&app, &QorvaneApp::finished);
    QObject::connect(&app, &QorvaneApp::finished, [&] {
        const auto stored = UserDefaults::standard().dataArray(libraryFolders);
        wasStoredAtTheEnd = stored && stored->size() == 1;
    });
    int busyLooks = 0;
    QObject::connect(&app.idleWatch(), &IdleWatch::looked, &app,
                     [&busyLooks](bool isBusy) { busyLooks += isBusy ? 1 : 0; });
    ASSERT_TRUE(waitUntil([&] { return busyLooks > 5; }));
    EXPECT_EQ(ends.count(), 0);
    disk.unlock();
    ASSERT_TRUE(waitUntil([&] { return ends.count() == 1; }));
    EXPECT_TRUE(wasStoredAtTheEnd);
}

TEST_F(QorvaneAppTest, foldersHandedOverWithoutAWindowBeginTheWaitForTheEndAnew)
{
    const LogCapture log;
    QorvaneApp app(nullptr, quick, betweenLooks);
    ASSERT_TRUE(app.openMainWindow());
    ASSERT_TRUE(waitUntil([&] { return hasAppeared(log); }));
    passTheStart();
    QSignalSpy ends(&app, &QorvaneApp::finished);
    bool isHandedOver = false;
    int idleLooksSince = 0;
    // After the first look that finds nothing, before the second, which would be the last.
    QObject::connect(&app.idleWatch(), &IdleWatch::looked, &app, [&](bool isBusy) {
        if (isBusy)
            return;
        idleLooksSince += isHandedOver ? 1 : 0;
        if (!std::exchange(isHandedOver, true))
            app.obey(InstanceMessage::add({}));
    });
    close(app);
    ASSERT_TRUE(waitUntil([&] { return ends.count() == 1; }));
    ASSERT_TRUE(isHandedOver);
    EXPECT_GE(idleLooksSince, 1) << "the next look was the last";
}
