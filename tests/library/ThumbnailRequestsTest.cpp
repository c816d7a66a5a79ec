#include "library/LibraryFixture.h"
#include "media/Image.h"
#include "media/ThumbnailCache.h"
#include "media/ThumbnailPaths.h"
#include "platform/DetachedTask.h"
#include "platform/FileAttributes.h"
#include "platform/Log.h"
#include "support/Waiting.h"

#include <QDir>
#include <QThread>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <semaphore>

using namespace Qorvane;

class ThumbnailRequestsTest : public LibraryFixture
{
protected:
    static std::optional<Image> result(QFuture<std::optional<Image>> future)
    {
        EXPECT_TRUE(waitUntil([&] { return future.isFinished(); }));
        return future.result();
    }
};

TEST_F(ThumbnailRequestsTest, aThumbnailIsMadeInTheBackgroundAndStored)
{
    const FileUrl picture = home.writePicture(QStringLiteral("1.png"), Qt::red, {120, 60});
    const std::optional<Image> thumbnail = result(qorManager->getThumbnail(picture));
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(thumbnail->size(), QSize(120, 60));
    EXPECT_TRUE(fileExists(QorManage::thumbnailURL(picture)->path()));
}

TEST_F(ThumbnailRequestsTest, aFileThatIsNoPictureEndsWithNothing)
{
    EXPECT_EQ(result(qorManager->getThumbnail(home.writeFile(QStringLiteral("1.png")))).has_value(), false);
    EXPECT_EQ(result(qorManager->generateVideoPreview(home.writeFile(QStringLiteral("1.mp4")))).has_value(),
              false);
}

TEST_F(ThumbnailRequestsTest, aRequestCancelledBeforeItsTurnIsNotMade)
{
    QList<FileUrl> pictures;
    // More requests at once than the pool has threads, so that the last one has to wait for its turn.
    for (int i = 0; i < 4 * QThread::idealThreadCount(); ++i)
        pictures.append(home.writePicture(QStringLiteral("%1.png").arg(i), Qt::red, {60, 60}));
    const FileUrl last = home.writePicture(QStringLiteral("last.png"));
    for (const FileUrl &picture : std::as_const(pictures))
        qorManager->getThumbnail(picture);
    QFuture<std::optional<Image>> future = qorManager->getThumbnail(last);
    future.cancel();
    ASSERT_TRUE(waitUntil([&] { return future.isFinished(); }));
    EXPECT_EQ(future.resultCount(), 0);
    EXPECT_FALSE(fileExists(QorManage::thumbnailURL(last)->path()));
}

TEST_F(ThumbnailRequestsTest, theLibrarysEndDropsWhatWaits)
{
    QList<QFuture<std::optional<Image>>> futures;
    for (int i = 0; i < 50; ++i)
        futures.append(qorManager->getThumbnail(home.writePicture(QStringLiteral("%1.png").arg(i))));
    qorManager.reset();
    for (const QFuture<std::optional<Image>> &future : std::as_const(futures))
        EXPECT_TRUE(future.isFinished());
}

TEST_F(ThumbnailRequestsTest, theCacheSizeIsMeasuredAndFallsToNothingWhenCleared)
{
    const FileUrl picture = home.writePicture(QStringLiteral("1.png"));
    ASSERT_TRUE(result(qorManager->getThumbnail(picture)));
    const qint64 bytes = fileAttributes(QorManage::thumbnailURL(picture)->path())->size;
    qorManager->updateCacheSize();
    ASSERT_TRUE(waitUntil([&] { return qorManager->cacheSizeInMB() > 0; }));
    EXPECT_DOUBLE_EQ(qorManager->cacheSizeInMB(), double(bytes) / 1048576.0);

    qorManager->clearCache();
    ASSERT_TRUE(waitUntil([&] { return qorManager->cacheSizeInMB() == 0; }));
    EXPECT_TRUE(QDir(QorManage::thumbnailCacheDirectory()->path()).exists());
    EXPECT_TRUE(QDir(QorManage::thumbnailCacheDirectory()->path()).isEmpty());
}

TEST_F(ThumbnailRequestsTest, aCacheThatCannotBeClearedKeepsItsSize)
{
    // There is none to remove, which counts as a failure.
    QDir(QorManage::thumbnailCacheDirectory()->path()).removeRecursively();
    int measured = 0;
    QObject::connect(qorManager.get(), &QorManage::cacheSizeInMBChanged, qorManager.get(),
                     [&] { ++measured; });
    qorManager->clearCache();
    settle();
    EXPECT_EQ(measured, 0);
    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("Error clearing cache: ")).size(), 1);
}

namespace {

int currentNiceness()
{
    return getpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)));
}

/// Runs `step` on the thread that logs a failed thumbnail, while that stands still.
class AtFailedThumbnail
{
public:
    explicit AtFailedThumbnail(std::function<void()> step)
    {
        Log::setSink([step = std::move(step)](const QString &line) {
            if (line.startsWith(QStringLiteral("❌ 缩略图生成失败: ")))
                step();
        });
    }
    ~AtFailedThumbnail() { Log::setSink({}); }
    AtFailedThumbnail(const AtFailedThumbnail &) = delete;
    AtFailedThumbnail &operator=(const AtFailedThumbnail &) = delete;
};

} // namespace

TEST_F(ThumbnailRequestsTest, visibleCellsAreServedAtFullWeightWhoeverAsks)
{
    std::atomic_int niceness = -1;
    const AtFailedThumbnail failure([&] { niceness = currentNiceness(); });
    const FileUrl broken = home.writeFile(QStringLiteral("1.png"));
    QFuture<std::optional<Image>> future;
    std::atomic_bool isAsked = false;
    DetachedTask::start(QualityOfService::background, [&](const TaskHandle &) {
        ASSERT_EQ(currentNiceness(), 19);
        future = qorManager->getThumbnail(broken); // the first, so its thread is started here
        isAsked = true;
    });
    ASSERT_TRUE(waitUntil([&] { return isAsked.load(); }));
    EXPECT_FALSE(result(future));
    EXPECT_EQ(niceness, currentNiceness());
}
