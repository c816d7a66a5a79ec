#include "views/pictures/ThumbnailProvider.h"

#include "platform/LeavablePool.h"
#include "support/Waiting.h"
#include "views/pictures/PictureQueue.h"
#include "views/pictures/ThumbnailUrl.h"

#include <QQuickImageResponse>
#include <QQuickTextureFactory>
#include <QSignalSpy>
#include <QThread>
#include <QUrl>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

using namespace Qorvane;

namespace {

QImage halves(QSize size, QColor left, QColor right)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(left);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = size.width() / 2; x < size.width(); ++x)
            image.setPixelColor(x, y, right);
    }
    return image;
}

/// Declared after what work uses of a test's: neither queue nor provider wait for it.
struct EndOfWork
{
    EndOfWork() = default;
    ~EndOfWork() { LeavablePool::waitUntilIdle(); }
    EndOfWork(const EndOfWork &) = delete;
    EndOfWork &operator=(const EndOfWork &) = delete;
};

const ThumbnailRequest request{QStringLiteral("/photos/旅行/100% a#b?.jpg"), QSize(200, 200), 8, 3};

} // namespace

TEST(ThumbnailRequest, survivesTheWayThroughAnIdentifier)
{
    EXPECT_EQ(ThumbnailRequest::fromId(request.toId()), request);
}

// The engine takes the identifier out of the address in its readable form.
TEST(ThumbnailRequest, survivesTheWayThroughAnAddress)
{
    for (const char *path : {"/photos/旅行/100% a#b?.jpg", "/p/🐶 %20é.jpg", "/p/a%2Fb&c=d+e;.jpg"}) {
        const QUrl url(ThumbnailUrl().source(QString::fromUtf8(path), 200, 120, 8, 1));
        const QString id = url.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority).mid(1);
        const auto read = ThumbnailRequest::fromId(id);
        ASSERT_TRUE(read.has_value()) << path;
        EXPECT_EQ(read->path, QString::fromUtf8(path));
        EXPECT_EQ(read->size, QSize(200, 120));
    }
}

TEST(ThumbnailRequest, refusesOtherIdentifiers)
{
    EXPECT_EQ(ThumbnailRequest::fromId(QStringLiteral("200x200/8")), std::nullopt);
    EXPECT_EQ(ThumbnailRequest::fromId(QString()), std::nullopt);
}

TEST(FittedThumbnail, keepsTheMiddleOfAWidePicture)
{
    const QImage cell = fittedThumbnail(halves(QSize(800, 400), Qt::red, Qt::blue), QSize(200, 200), 0);
    ASSERT_EQ(cell.size(), QSize(200, 200));
    EXPECT_EQ(cell.pixelColor(20, 100), QColor(Qt::red));
    EXPECT_EQ(cell.pixelColor(180, 100), QColor(Qt::blue));
}

TEST(FittedThumbnail, makesTheCornersClear)
{
    const QImage cell = fittedThumbnail(halves(QSize(400, 400), Qt::red, Qt::red), QSize(200, 200), 8);
    EXPECT_EQ(cell.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(cell.pixelColor(199, 199).alpha(), 0);
    EXPECT_EQ(cell.pixelColor(100, 0).alpha(), 255);
}

TEST(FittedThumbnail, ofNothingIsNothing)
{
    EXPECT_TRUE(fittedThumbnail({}, QSize(200, 200), 8).isNull());
}

TEST(ThumbnailProvider, loadsOffTheCallersThreadAndFinishes)
{
    std::atomic<QThread *> thread = nullptr;
    QString loadedPath;
    const EndOfWork end;
    ThumbnailProvider provider(std::make_shared<PictureQueue>(1), [&](const QString &path) {
        thread = QThread::currentThread();
        loadedPath = path;
        return halves(QSize(800, 600), Qt::red, Qt::blue);
    });
    const std::unique_ptr<QQuickImageResponse> response(
        provider.requestImageResponse(request.toId(), QSize(400, 400)));
    QSignalSpy finished(response.get(), &QQuickImageResponse::finished);
    ASSERT_TRUE(waitUntil([&] { return finished.count() == 1; }));
    EXPECT_NE(thread.load(), QThread::currentThread());
    EXPECT_EQ(loadedPath, request.path);
    const std::unique_ptr<QQuickTextureFactory> texture(response->textureFactory());
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->textureSize(), QSize(400, 400));
}

TEST(ThumbnailProvider, answersAFileWithoutAThumbnailWithAClearPixel)
{
    ThumbnailProvider provider(std::make_shared<PictureQueue>(1), [](const QString &) { return QImage(); });
    const std::unique_ptr<QQuickImageResponse> response(
        provider.requestImageResponse(request.toId(), QSize(200, 200)));
    QSignalSpy finished(response.get(), &QQuickImageResponse::finished);
    ASSERT_TRUE(waitUntil([&] { return finished.count() == 1; }));
    EXPECT_TRUE(response->errorString().isEmpty());
    const std::unique_ptr<QQuickTextureFactory> texture(response->textureFactory());
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->image().size(), QSize(1, 1));
    EXPECT_EQ(texture->image().pixelColor(0, 0).alpha(), 0);
}
