#include "views/pictures/PictureResponse.h"

#include "platform/LeavablePool.h"
#include "support/Waiting.h"
#include "views/pictures/PictureQueue.h"

#include <QQuickTextureFactory>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <utility>

using namespace Qorvane;

namespace {

/// A queue of one thread, which a test may hold.
class PictureResponseTest : public testing::Test
{
protected:
    ~PictureResponseTest() override
    {
        goOn();
        // The queue doesn't wait for its work, which uses this.
        LeavablePool::waitUntilIdle();
    }

    // In a piece of work: stays there until the test goes on.
    void stay()
    {
        held.set_value();
        gate.get_future().wait();
    }
    void goOn()
    {
        if (!std::exchange(isGoingOn, true))
            gate.set_value();
    }

    static QImage answerOf(PictureResponse &response)
    {
        QSignalSpy finished(&response, &QQuickImageResponse::finished);
        EXPECT_TRUE(waitUntil([&] { return finished.count() == 1; }));
        EXPECT_TRUE(response.errorString().isEmpty());
        const std::unique_ptr<QQuickTextureFactory> texture(response.textureFactory());
        return texture ? texture->image() : QImage();
    }
    static void expectClearPixel(const QImage &answer)
    {
        ASSERT_EQ(answer.size(), QSize(1, 1));
        EXPECT_EQ(answer.pixelColor(0, 0).alpha(), 0);
    }

    const QString path = QStringLiteral("/photos/a.jpg");
    std::promise<void> held;
    std::promise<void> gate;
    bool isGoingOn = false;
    const std::shared_ptr<PictureQueue> queue = std::make_shared<PictureQueue>(1);
};

} // namespace

TEST_F(PictureResponseTest, isThePictureThatWasLoaded)
{
    QImage picture(4, 3, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const auto response = PictureResponse::to(queue, path, [picture] { return picture; });
    EXPECT_EQ(answerOf(*response), picture);
}

TEST_F(PictureResponseTest, isOneClearPixelWhereNothingWasLoaded)
{
    const auto response = PictureResponse::to(queue, path, [] { return QImage(); });
    expectClearPixel(answerOf(*response));
}

TEST_F(PictureResponseTest, withoutPictureIsOneClearPixel)
{
    expectClearPixel(answerOf(*PictureResponse::withoutPicture()));
}

TEST_F(PictureResponseTest, aCancelledRequestIsNotLoadedButFinishes)
{
    queue->add(QStringLiteral("gate"), [this] {
        stay();
        return PictureQueue::Delivery();
    });
    held.get_future().wait();
    std::atomic_int loads = 0;
    const auto response = PictureResponse::to(queue, path, [&loads] {
        ++loads;
        return QImage();
    });
    QSignalSpy finished(response.get(), &QQuickImageResponse::finished);
    response->cancel();
    EXPECT_TRUE(waitUntil([&] { return finished.count() == 1; }));
    goOn();
    LeavablePool::waitUntilIdle();
    drainMainQueue();
    EXPECT_EQ(loads, 0);
    EXPECT_EQ(finished.count(), 1);
}

TEST_F(PictureResponseTest, aResponseMayGoBeforeItsPicture)
{
    QImage picture(4, 3, QImage::Format_RGB32);
    auto response = PictureResponse::to(queue, path, [this, &picture] {
        stay();
        return picture;
    });
    held.get_future().wait();
    response.reset();
    goOn();
    LeavablePool::waitUntilIdle();
    EXPECT_TRUE(picture.isDetached()) << "the picture was kept by a response that is gone";
}
