#include "platform/SerialQueue.h"

#include <QFile>

#include <gtest/gtest.h>

#include <vector>

using namespace Qorvane;

TEST(SerialQueue, runsBlocksInTheOrderTheyWereQueued)
{
    std::vector<int> order;
    SerialQueue queue("com.qorvane.test", QualityOfService::utility);
    for (int i = 0; i < 100; ++i)
        queue.async([&order, i] { order.push_back(i); });
    queue.sync([&order] { order.push_back(100); });

    ASSERT_EQ(order.size(), 101u);
    for (int i = 0; i <= 100; ++i)
        EXPECT_EQ(order[size_t(i)], i);
}

TEST(SerialQueue, carriesItsLabelAsTheThreadsName)
{
    SerialQueue queue("memory.cache", QualityOfService::userInitiated);
    QByteArray name;
    queue.sync([&name] {
        QFile file(QStringLiteral("/proc/thread-self/comm"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        name = file.readAll().trimmed();
    });
    EXPECT_EQ(name, QByteArray("memory.cache"));
}

TEST(SerialQueue, runsWhatIsStillQueuedBeforeItEnds)
{
    int count = 0;
    {
        SerialQueue queue("com.qorvane.test", QualityOfService::background);
        for (int i = 0; i < 1000; ++i)
            queue.async([&count] { ++count; });
    }
    EXPECT_EQ(count, 1000);
}

TEST(SerialQueue, knowsWhetherTheCallerIsInsideIt)
{
    SerialQueue queue("com.qorvane.test", QualityOfService::utility);
    bool isInside = false;
    queue.sync([&] { isInside = queue.isCurrent(); });
    EXPECT_TRUE(isInside);
    EXPECT_FALSE(queue.isCurrent());
}

TEST(SerialQueueDeathTest, syncOnItsOwnQueueEndsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            SerialQueue queue("com.qorvane.test", QualityOfService::utility);
            queue.sync([&queue] { queue.sync([] {}); });
        },
        "its own queue");
}
