#include "EmbeddingResponder.h"

#include "clip/ClipTest.h"
#include "media/EmbeddingMessages.h"
#include "support/Waiting.h"

#include <QColor>

#include <gmock/gmock.h>

#include <thread>

using namespace Qorvane;
using EmbeddingMessages::EmbeddingVector;

namespace {

class EmbeddingResponderTest : public ClipTest
{
protected:
    EmbeddingResponderTest()
        : m_observation(NotificationCenter::defaultCenter().addObserver(
              EmbeddingMessages::responseName, ObserverQueue::main,
              [this](const Notification &response) { responses.append(response.userInfo); }))
    {
    }
    ~EmbeddingResponderTest() override { NotificationCenter::defaultCenter().removeObserver(m_observation); }

    static QVariantMap request(const QString &id, const QImage &picture)
    {
        return {{EmbeddingMessages::idKey, id},
                {EmbeddingMessages::imageKey, QVariant::fromValue(Image(picture))},
                {EmbeddingMessages::filenameKey, QStringLiteral("picture.jpg")}};
    }

    static void post(const QVariantMap &userInfo)
    {
        NotificationCenter::defaultCenter().post(EmbeddingMessages::requestName, userInfo);
    }

    QVariantMap responseTo(const QString &id) const
    {
        for (const QVariantMap &response : responses) {
            if (response.value(EmbeddingMessages::idKey).toString() == id)
                return response;
        }
        return {};
    }

    QList<QVariantMap> responses;

private:
    NotificationCenter::Token m_observation;
};

} // namespace

TEST_F(EmbeddingResponderTest, answersWithTheVectorUnderTheSameId)
{
    const auto service = loadedService();
    const EmbeddingResponder responder(*service);
    post(request(QStringLiteral("one"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return !responses.isEmpty(); }));
    const QVariantMap response = responseTo(QStringLiteral("one"));
    const auto vector = response.value(EmbeddingMessages::vectorKey).value<EmbeddingVector>();
    ASSERT_EQ(vector.size(), openaiLength);
    EXPECT_GT(vector[Axis::red], 0.9f);
    EXPECT_TRUE(log.contains(QStringLiteral("✅ 图像特征提取成功 [picture.jpg]，特征维度: 16")));
}

TEST_F(EmbeddingResponderTest, loadsTheEncodersFirst)
{
    ChineseClipService service;
    const EmbeddingResponder responder(service);
    post(request(QStringLiteral("one"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return !responses.isEmpty(); }));
    EXPECT_TRUE(service.modelsLoaded());
    EXPECT_EQ(responses[0].value(EmbeddingMessages::vectorKey).value<EmbeddingVector>().size(), openaiLength);
}

TEST_F(EmbeddingResponderTest, answersARequestDuringTheLoadWithAnEmptyVector)
{
    ChineseClipService service;
    const EmbeddingResponder responder(service);
    auto load = service.ensureModelsLoaded();
    post(request(QStringLiteral("early"), plainPicture(Qt::red)));
    drainMainQueue();
    ASSERT_TRUE(waitUntil([this] { return !responses.isEmpty(); }));
    // On a fast machine the load may be over by the time the request is taken.
    const auto vector = responses[0].value(EmbeddingMessages::vectorKey).value<EmbeddingVector>();
    EXPECT_EQ(vector.empty(), log.contains(QStringLiteral("❌ Models not loaded")));
    await(std::move(load));
}

TEST_F(EmbeddingResponderTest, answersWithAnEmptyVectorWhenThePictureCannotBeEmbedded)
{
    const auto service = loadedService();
    const EmbeddingResponder responder(*service);
    post(request(QStringLiteral("none"), QImage()));
    ASSERT_TRUE(waitUntil([this] { return !responses.isEmpty(); }));
    const QVariant vector = responses[0].value(EmbeddingMessages::vectorKey);
    EXPECT_EQ(vector.metaType(), QMetaType::fromType<EmbeddingVector>());
    EXPECT_TRUE(vector.value<EmbeddingVector>().empty());
}

TEST_F(EmbeddingResponderTest, ignoresARequestWithoutATextIdOrAnImage)
{
    const auto service = loadedService();
    const EmbeddingResponder responder(*service);
    QVariantMap withoutId = request(QStringLiteral("x"), plainPicture(Qt::red));
    withoutId.remove(EmbeddingMessages::idKey);
    QVariantMap withNumber = withoutId;
    withNumber.insert(EmbeddingMessages::idKey, 7);
    QVariantMap withoutImage = request(QStringLiteral("x"), plainPicture(Qt::red));
    withoutImage.insert(EmbeddingMessages::imageKey, QStringLiteral("no image"));
    post(withoutId);
    post(withNumber);
    post(withoutImage);
    post(request(QStringLiteral("good"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return !responses.isEmpty(); }));
    drainMainQueue();
    ASSERT_EQ(responses.size(), 1);
    EXPECT_EQ(responses[0].value(EmbeddingMessages::idKey), QStringLiteral("good"));
}

TEST_F(EmbeddingResponderTest, answersRequestsFromSeveralThreads)
{
    const auto service = loadedService();
    const EmbeddingResponder responder(*service);
    std::vector<std::thread> threads;
    for (int run = 0; run < 4; ++run) {
        threads.emplace_back([run] {
            for (int index = 0; index < 5; ++index)
                post(request(QStringLiteral("%1-%2").arg(run).arg(index),
                             plainPicture(index % 2 ? Qt::red : Qt::blue)));
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    ASSERT_TRUE(waitUntil([this] { return responses.size() == 20; }));
    for (int run = 0; run < 4; ++run) {
        for (int index = 0; index < 5; ++index) {
            const auto vector = responseTo(QStringLiteral("%1-%2").arg(run).arg(index))
                                    .value(EmbeddingMessages::vectorKey)
                                    .value<EmbeddingVector>();
            ASSERT_EQ(vector.size(), openaiLength);
            EXPECT_GT(vector[index % 2 ? Axis::red : Axis::blue], 0.9f);
        }
    }
}

TEST_F(EmbeddingResponderTest, isSilentOnceItIsGone)
{
    const auto service = loadedService();
    {
        const EmbeddingResponder responder(*service);
        post(request(QStringLiteral("late"), plainPicture(Qt::red)));
    }
    drainMainQueue();
    EXPECT_TRUE(responses.isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}
