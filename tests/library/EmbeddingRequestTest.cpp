#include "library/EmbeddingRequest.h"

#include "library/FakeEncoder.h"
#include "library/LibraryHome.h"
#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QUuid>

#include <gtest/gtest.h>

#include <future>

using namespace Qorvane;
using namespace Qorvane::EmbeddingMessages;

namespace {

using Answer = std::optional<EmbeddingVector>;

class EmbeddingRequestTest : public testing::Test
{
protected:
    EmbeddingRequestTest()
    {
        QImage pixels(4, 4, QImage::Format_RGB32);
        pixels.fill(Qt::blue);
        picture = Image(pixels);
    }

    /// Sends from another thread, as runs do, and runs the event loop until the answer is there.
    Answer send(double timeout)
    {
        std::future<Answer> answer = std::async(std::launch::async, [this, timeout] {
            return EmbeddingRequest(timeout).send(picture, QStringLiteral("blue.png"));
        });
        EXPECT_TRUE(
            waitUntil([&] { return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
        return answer.get();
    }

    LibraryHome home;
    Image picture;
};

constexpr double longEnough = 20;
constexpr double briefly = 0.05;

} // namespace

TEST_F(EmbeddingRequestTest, carriesAFreshIdentityThePictureAndItsName)
{
    FakeEncoder encoder;
    encoder.isHolding = true;
    send(briefly);
    send(briefly);
    ASSERT_EQ(encoder.held().size(), 2);
    const QVariantMap info = encoder.held()[0].userInfo;
    EXPECT_EQ(info.keys(), (QStringList{filenameKey, idKey, imageKey}));
    EXPECT_EQ(info.value(filenameKey).toString(), QStringLiteral("blue.png"));
    EXPECT_EQ(info.value(imageKey).value<Image>().pixels(), picture.pixels());
    const QString id = info.value(idKey).toString();
    EXPECT_EQ(id, QUuid::fromString(id).toString(QUuid::WithoutBraces).toUpper());
    EXPECT_NE(id, encoder.held()[1].userInfo.value(idKey).toString());
}

TEST_F(EmbeddingRequestTest, givesTheVectorOfTheAnswer)
{
    const FakeEncoder encoder;
    EXPECT_EQ(send(longEnough), (EmbeddingVector{0, 0, 1}));
}

TEST_F(EmbeddingRequestTest, anEmptyVectorIsAnAnswer)
{
    FakeEncoder encoder;
    encoder.answer = [](const Image &) { return QVariant::fromValue(EmbeddingVector()); };
    EXPECT_EQ(send(longEnough), EmbeddingVector());
}

TEST_F(EmbeddingRequestTest, anAnswerWithoutAVectorGivesNothingAtOnce)
{
    FakeEncoder encoder;
    encoder.answer = [](const Image &) { return QVariant(QStringLiteral("0.1 0.2")); };
    EXPECT_EQ(send(longEnough), std::nullopt);
}

TEST_F(EmbeddingRequestTest, answersToOthersArePassedOver)
{
    FakeEncoder encoder;
    encoder.onRequest = [](const QString &) {
        const EmbeddingVector wrong{9};
        NotificationCenter &center = NotificationCenter::defaultCenter();
        center.post(responseName,
                    {{idKey, QStringLiteral("another")}, {vectorKey, QVariant::fromValue(wrong)}});
        center.post(responseName, {{idKey, 7}, {vectorKey, QVariant::fromValue(wrong)}});
        center.post(responseName, {{vectorKey, QVariant::fromValue(wrong)}});
    };
    EXPECT_EQ(send(longEnough), (EmbeddingVector{0, 0, 1}));
}

TEST_F(EmbeddingRequestTest, onlyTheFirstOfTwoAnswersCounts)
{
    FakeEncoder encoder;
    encoder.isHolding = true;
    std::future<Answer> answer = std::async(
        std::launch::async, [this] { return EmbeddingRequest(longEnough).send(picture, QString()); });
    ASSERT_TRUE(waitUntil([&] { return encoder.held().size() == 1; }));
    const Notification request = encoder.held()[0];
    encoder.respond(request);
    encoder.answer = [](const Image &) { return QVariant::fromValue(EmbeddingVector{9}); };
    encoder.respond(request);
    drainMainQueue();
    EXPECT_EQ(answer.get(), (EmbeddingVector{0, 0, 1}));
}

TEST_F(EmbeddingRequestTest, givesNothingWhenNobodyListens)
{
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(send(briefly), std::nullopt);
    EXPECT_GE(clock.elapsed(), 50);
}

TEST_F(EmbeddingRequestTest, aLateAnswerIsLostWithoutATrace)
{
    FakeEncoder encoder;
    encoder.isHolding = true;
    EXPECT_EQ(send(briefly), std::nullopt);
    encoder.release();
    drainMainQueue();
    EXPECT_EQ(home.log().lines(), QStringList());
}
