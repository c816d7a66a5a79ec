#include "views/pictures/PictureProvider.h"

#include "platform/LeavablePool.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"

#include <QImage>
#include <QQuickImageResponse>
#include <QQuickTextureFactory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <semaphore>

using namespace Qorvane;

namespace {

QImage answerOf(QQuickImageResponse &response)
{
    QSignalSpy finished(&response, &QQuickImageResponse::finished);
    EXPECT_TRUE(waitUntil([&] { return finished.count() == 1; }));
    EXPECT_TRUE(response.errorString().isEmpty());
    const std::unique_ptr<QQuickTextureFactory> texture(response.textureFactory());
    return texture ? texture->image() : QImage();
}

struct Asked
{
    PictureProvider::Kind kind;
    QString path;
    int maxPixelSize;
};

// What the provider is asked to load for a source as the engine hands it over.
Asked askedFor(const QString &source, QSize size)
{
    Asked asked{};
    std::atomic<QThread *> thread = nullptr;
    PictureProvider provider([&](PictureProvider::Kind kind, const QString &path, int maxPixelSize) {
        asked = {kind, path, maxPixelSize};
        thread = QThread::currentThread();
        return QImage(4, 3, QImage::Format_RGB32);
    });
    const QString id = QUrl(source).toString(QUrl::RemoveScheme | QUrl::RemoveAuthority).mid(1);
    const std::unique_ptr<QQuickImageResponse> response(provider.requestImageResponse(id, size));
    EXPECT_EQ(answerOf(*response).size(), QSize(4, 3));
    EXPECT_NE(thread.load(), QThread::currentThread());
    LeavablePool::waitUntilIdle();
    return asked;
}

} // namespace

TEST(PictureProvider, loadsOffTheCallersThreadWithinTheBoundThatIsAskedFor)
{
    const Asked asked = askedFor(PictureUrl().full(QStringLiteral("/photos/a.jpg")), QSize(1600, 1200));
    EXPECT_EQ(asked.kind, PictureProvider::Kind::full);
    EXPECT_EQ(asked.path, QStringLiteral("/photos/a.jpg"));
    EXPECT_EQ(asked.maxPixelSize, 1600);
}

TEST(PictureProvider, takesEveryFileName)
{
    for (const QString &path : {QStringLiteral("/旅行/日落 🌅.jpg"), QStringLiteral("/a/100%41 #1?.jpg"),
                                QStringLiteral("/a/é+b&c.jpg")}) {
        const Asked asked = askedFor(PictureUrl().thumbnail(path), {});
        EXPECT_EQ(asked.kind, PictureProvider::Kind::thumbnail);
        EXPECT_EQ(asked.path, path);
    }
}

TEST(PictureProvider, givesAClearPixelForAFileWithoutAPicture)
{
    PictureProvider provider([](auto &&...) { return QImage(); });
    const std::unique_ptr<QQuickImageResponse> response(
        provider.requestImageResponse(QStringLiteral("full/x.jpg"), {}));
    const QImage answer = answerOf(*response);
    ASSERT_EQ(answer.size(), QSize(1, 1));
    EXPECT_EQ(answer.pixelColor(0, 0).alpha(), 0);
}

TEST(PictureProvider, givesAClearPixelForWhatItIsNotAskedInItsWords)
{
    bool isLoaded = false;
    PictureProvider provider([&isLoaded](auto &&...) {
        isLoaded = true;
        return QImage(4, 3, QImage::Format_RGB32);
    });
    for (const char *id : {"", "full", "full/", "half/a.jpg"}) {
        const std::unique_ptr<QQuickImageResponse> response(
            provider.requestImageResponse(QString::fromLatin1(id), {}));
        EXPECT_EQ(answerOf(*response).size(), QSize(1, 1)) << id;
    }
    EXPECT_FALSE(isLoaded);
}

TEST(PictureProvider, thereIsNoSourceForNoFile)
{
    EXPECT_EQ(PictureUrl().full({}), QString());
    EXPECT_EQ(PictureUrl().thumbnail({}), QString());
}

TEST(PictureProvider, aThumbnailWaitsForNoFullPicture)
{
    std::atomic_bool isFullLoading = false;
    std::counting_semaphore<> mayGoOn(0);
    PictureProvider provider([&](PictureProvider::Kind kind, auto &&...) {
        if (kind == PictureProvider::Kind::full) {
            isFullLoading = true;
            mayGoOn.acquire();
        }
        return QImage(4, 3, QImage::Format_RGB32);
    });
    const auto request = [&provider](const char *id) {
        return std::unique_ptr<QQuickImageResponse>(
            provider.requestImageResponse(QString::fromLatin1(id), {}));
    };
    const auto left = request("full/left.nef");
    ASSERT_TRUE(waitUntil([&isFullLoading] { return isFullLoading.load(); }));
    const auto open = request("full/open.nef");
    // One after the other: the first may well come before what it would wait for.
    for (const char *id : {"thumbnail/a.nef", "thumbnail/b.nef", "thumbnail/open.nef"})
        EXPECT_EQ(answerOf(*request(id)).size(), QSize(4, 3)) << id;
    mayGoOn.release(2);
    EXPECT_EQ(answerOf(*open).size(), QSize(4, 3));
}

TEST(PictureProvider, readsAPictureUncutAndBounded)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("wide.png"));
    QImage picture(2000, 500, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(path));
    EXPECT_EQ(PictureProvider::loadPicture(PictureProvider::Kind::full, path, 1000).size(), QSize(1000, 250));
    EXPECT_EQ(PictureProvider::loadPicture(PictureProvider::Kind::full, path, 5000).size(), QSize(2000, 500));
}

TEST(PictureProvider, saysWhyThereIsNoPicture)
{
    const LogCapture log;
    const QString path = QStringLiteral("/absent/a.jpg");
    EXPECT_TRUE(PictureProvider::loadPicture(PictureProvider::Kind::full, path, 1000).isNull());
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().constFirst().contains(path));
}
