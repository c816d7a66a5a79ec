#include "EmbeddingResponder.h"

#include "clip/ClipTest.h"
#include "media/EmbeddingMessages.h"
#include "platform/Log.h"
#include "support/Waiting.h"

#include <QColor>
#include <QThread>

#include <gmock/gmock.h>

#include <latch>
#include <memory>
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

    EmbeddingVector vectorFor(const QString &id) const
    {
        return responseTo(id).value(EmbeddingMessages::vectorKey).value<EmbeddingVector>();
    }

    QList<QVariantMap> responses;
    const QString loading = QStringLiteral("🔍 开始加载模型");
    const QString notLoaded = QStringLiteral("❌ Models not loaded");

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

TEST_F(EmbeddingResponderTest, answersARequestDuringALoadWhenThatHasEnded)
{
    ChineseClipService service;
    const EmbeddingResponder responder(service);
    auto load = service.ensureModelsLoaded();
    post(request(QStringLiteral("early"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return !responses.isEmpty(); }));
    EXPECT_EQ(vectorFor(QStringLiteral("early")).size(), openaiLength);
    EXPECT_FALSE(log.contains(notLoaded));
    await(std::move(load));
}

TEST_F(EmbeddingResponderTest, loadsOnceForManyRequests)
{
    ChineseClipService service;
    const EmbeddingResponder responder(service);
    for (int index = 0; index < 5; ++index)
        post(request(QString::number(index), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return responses.size() == 5; }));
    for (int index = 0; index < 5; ++index)
        EXPECT_EQ(vectorFor(QString::number(index)).size(), openaiLength);
    EXPECT_EQ(log.linesStartingWith(loading).size(), 1);
}

TEST_F(EmbeddingResponderTest, doesNotTryAgainWhenTheEncodersAreMissing)
{
    removeInstalledEncoders();
    ChineseClipService service;
    const EmbeddingResponder responder(service);
    post(request(QStringLiteral("first"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return responses.size() == 1; }));
    EXPECT_EQ(log.linesStartingWith(loading).size(), 1);
    log.clear();
    post(request(QStringLiteral("second"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return responses.size() == 2; }));
    EXPECT_EQ(log.lines(), QStringList{notLoaded});
    EXPECT_TRUE(vectorFor(QStringLiteral("first")).empty());
    EXPECT_TRUE(vectorFor(QStringLiteral("second")).empty());
}

TEST_F(EmbeddingResponderTest, doesNotTryAgainWhatAnotherHasTriedInVain)
{
    removeInstalledEncoders();
    ChineseClipService service;
    await(service.ensureModelsLoaded());
    const EmbeddingResponder responder(service);
    log.clear();
    post(request(QStringLiteral("one"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return !responses.isEmpty(); }));
    EXPECT_EQ(log.lines(), QStringList{notLoaded});
}

TEST_F(EmbeddingResponderTest, usesTheEncodersThatAnotherLoadsLater)
{
    removeInstalledEncoders();
    ChineseClipService service;
    const EmbeddingResponder responder(service);
    post(request(QStringLiteral("before"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return responses.size() == 1; }));
    ASSERT_TRUE(installTestFamily(QStringLiteral("openai")));
    auto load = service.ensureModelsLoaded();
    post(request(QStringLiteral("during"), plainPicture(Qt::red)));
    await(std::move(load));
    post(request(QStringLiteral("after"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([this] { return responses.size() == 3; }));
    EXPECT_TRUE(vectorFor(QStringLiteral("before")).empty());
    EXPECT_EQ(vectorFor(QStringLiteral("during")).size(), openaiLength);
    EXPECT_EQ(vectorFor(QStringLiteral("after")).size(), openaiLength);
}

TEST_F(EmbeddingResponderTest, forgetsWhatWaitsForALoadWhenItGoes)
{
    ChineseClipService service;
    auto responder = std::make_unique<EmbeddingResponder>(service);
    // At the first line that the load writes it waits: its thread may be faster than this one.
    const auto isGone = std::make_shared<std::latch>(1);
    Log::setSink([isGone, thisThread = QThread::currentThread()](const QString &) {
        if (QThread::currentThread() != thisThread)
            isGone->wait();
    });
    QObject::connect(&service, &ChineseClipService::isLoadingModelsChanged, &service, [&] {
        if (service.isLoadingModels())
            QMetaObject::invokeMethod(
                &service,
                [&] {
                    responder.reset();
                    isGone->count_down();
                },
                Qt::QueuedConnection);
    });
    post(request(QStringLiteral("late"), plainPicture(Qt::red)));
    ASSERT_TRUE(waitUntil([&service] { return service.modelsLoaded() && !service.isLoadingModels(); }));
    EXPECT_FALSE(responder);
    drainMainQueue();
    EXPECT_TRUE(responses.isEmpty());
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
