#include "QorvaneApp.h"

#include "library/QorManage.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"
#include "views/ContentView.h"

#include <QQuickWindow>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

bool hasAppeared(const LogCapture &log)
{
    return !log.linesStartingWith(QStringLiteral("🖼️ 缩略图目录: ")).isEmpty();
}

} // namespace

TEST(QorvaneApp, logsItsLocationsWhenTheMainWindowAppears)
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

TEST(QorvaneApp, aFirstStartHasAnEmptyLibraryAndSynchronisesNothing)
{
    const LogCapture log;
    QorvaneApp app;
    ASSERT_TRUE(app.openMainWindow());
    ASSERT_TRUE(waitUntil([&] { return hasAppeared(log); }));
    EXPECT_TRUE(app.qorManager().libraryFolders().isEmpty());
    EXPECT_FALSE(app.qorManager().selectedFolder());
    EXPECT_TRUE(log.linesStartingWith(QStringLiteral("🔄 启动时检查文件夹同步状态...")).isEmpty());
}

TEST(QorvaneApp, buildsTheLibraryOnce)
{
    QorvaneApp app;
    EXPECT_EQ(&app.qorManager(), &app.qorManager());
}

TEST(QorvaneApp, closingTheMainWindowLeavesTheLibrary)
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
