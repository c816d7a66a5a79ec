// The service may go at any moment of a load, and the application right after it: the tests make applications
// of their own.

#include "clip/ClipTest.h"
#include "platform/DetachedTask.h"
#include "store/EmbeddingStore.h"
#include "support/OwnApplication.h"
#include "support/TestHome.h"
#include "support/Waiting.h"

#include <QDir>

#include <cstdlib>
#include <functional>
#include <ostream>

using namespace Qorvane;

namespace {

struct Moment
{
    const char *name;
    std::function<void(const LogCapture &log)> wait;
};

void PrintTo(const Moment &moment, std::ostream *stream)
{
    *stream << moment.name;
}

const QString loadedLine = QStringLiteral("🎉 模型加载成功 (on main)");
const QString storedPrefix = QStringLiteral("📥 从数据库加载了 ");
const QString newPrefix = QStringLiteral("💾 新计算并存储标签向量: '");

auto lines(const QString &prefix, int count)
{
    return [prefix, count](const LogCapture &log) {
        ASSERT_TRUE(waitUntil([&] { return log.linesStartingWith(prefix).size() >= count; }));
    };
}

// What was begun is over, and the event loop hasn't come round to it.
auto answeredAfter(std::function<void(const LogCapture &log)> wait)
{
    return [wait = std::move(wait)](const LogCapture &log) {
        wait(log);
        DetachedTask::waitUntilIdle();
    };
}

const auto atOnce = [](const LogCapture &) {};

const Moment moments[] = {
    {"theEncodersAreRead", atOnce},
    {"theEncodersWereRead", answeredAfter(atOnce)},
    {"theStoreIsRead", lines(loadedLine, 1)},
    {"theStoreWasRead", answeredAfter(lines(loadedLine, 1))},
    {"theFirstTextIsEncoded", lines(storedPrefix, 1)},
    {"aVectorIsWritten", lines(newPrefix, 1)},
    {"aVectorWasWritten", answeredAfter(lines(newPrefix, 3))},
};

class ServiceEnd
    // First, since the rest needs one.
    : private OwnApplication,
      public ClipTest,
      public testing::WithParamInterface<Moment>
{
protected:
    ServiceEnd()
    {
        EmbeddingStore::shared().cleanupObsoleteTagVectors({});
        haveRealPredefinedTags();
    }

    void endApplication() { OwnApplication::end(); }

    std::unique_ptr<ChineseClipService> service = std::make_unique<ChineseClipService>();
};

using ServiceEndDeathTest = ServiceEnd;

} // namespace

TEST_P(ServiceEnd, whoWaitsForItGoesOn)
{
    auto loading = service->ensureModelsLoaded();
    GetParam().wait(log);
    service.reset();
    await(std::move(loading));
    drainMainQueue();
    EXPECT_LT(EmbeddingStore::shared().getTagVectorCount(), 928);
}

// In a process of its own, since nobody is left to take down what waits for events: the programs don't end
// this way.
TEST_P(ServiceEndDeathTest, theApplicationMayGoRightAfter)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            service->ensureModelsLoaded();
            GetParam().wait(log);
            service.reset();
            endApplication();
            QDir(QDir::homePath()).removeRecursively();
            std::_Exit(EXIT_SUCCESS);
        },
        testing::ExitedWithCode(EXIT_SUCCESS), "");
}

INSTANTIATE_TEST_SUITE_P(While, ServiceEnd, testing::ValuesIn(moments),
                         [](const auto &moment) { return moment.param.name; });
INSTANTIATE_TEST_SUITE_P(While, ServiceEndDeathTest, testing::ValuesIn(moments),
                         [](const auto &moment) { return moment.param.name; });

int main(int argc, char **argv)
{
    const TestHome home;
    qputenv("TMPDIR", qgetenv("HOME")); // so that a process that ends half-way leaves nothing behind
    testing::InitGoogleTest(&argc, argv);
    return home.isValid() ? RUN_ALL_TESTS() : EXIT_FAILURE;
}
