#include "library/DeferredWrites.h"

#include "platform/MainQueue.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"

#include <QObject>

#include <gtest/gtest.h>

#include <semaphore>
#include <vector>

using namespace Qorvane;

TEST(DeferredWrites, areMadeInTheirOrderAndInTheBackground)
{
    DeferredWrites writes("com.qorvane.test");
    std::vector<int> order;
    bool wasOnMainThread = false;
    for (int i = 0; i < 50; ++i) {
        writes.perform([&order, &wasOnMainThread, i] {
            order.push_back(i);
            wasOnMainThread = wasOnMainThread || MainQueue::isCurrent();
        });
    }
    writes.wait();
    ASSERT_EQ(order.size(), 50u);
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(order[size_t(i)], i);
    EXPECT_FALSE(wasOnMainThread);
}

TEST(DeferredWrites, areFollowedOnTheMainThreadWhenTheyAreMade)
{
    DeferredWrites writes("com.qorvane.test");
    QObject context;
    std::atomic_bool isWritten = false;
    bool wasWritten = false;
    bool wasOnMainThread = false;
    bool isDone = false;
    writes.perform([&] { isWritten = true; }, &context,
                   [&] {
                       wasWritten = isWritten;
                       wasOnMainThread = MainQueue::isCurrent();
                       isDone = true;
                   });
    EXPECT_FALSE(isDone);
    ASSERT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_TRUE(wasWritten);
    EXPECT_TRUE(wasOnMainThread);
}

TEST(DeferredWrites, areFollowedByNothingWhenTheContextIsGone)
{
    DeferredWrites writes("com.qorvane.test");
    bool isWritten = false;
    bool isFollowed = false;
    {
        QObject context;
        writes.perform([&] { isWritten = true; }, &context, [&] { isFollowed = true; });
    }
    writes.wait();
    drainMainQueue();
    EXPECT_TRUE(isWritten);
    EXPECT_FALSE(isFollowed);
}

TEST(DeferredWrites, aWaitEndsWhenItTakesTooLong)
{
    std::binary_semaphore end(0);
    DeferredWrites writes("com.qorvane.test");
    writes.perform([&end] { end.acquire(); });
    EXPECT_FALSE(writes.wait(0.001));
    end.release();
    EXPECT_TRUE(writes.wait(60));
}

TEST(DeferredWrites, theEndMakesWhatIsStillToBeMade)
{
    int made = 0;
    {
        DeferredWrites writes("com.qorvane.test");
        for (int i = 0; i < 100; ++i)
            writes.perform([&made] { ++made; });
    }
    EXPECT_EQ(made, 100);
}

TEST(DeferredWrites, oneThatHangsAtTheEndLeavesTheOthersTheirTimeAndIsTold)
{
    const LogCapture log;
    std::binary_semaphore end(0);
    bool isWritten = false;
    DeferredWrites hanging("com.qorvane.test", QStringLiteral("Error saving one: "));
    DeferredWrites sound("com.qorvane.test", QStringLiteral("Error saving other: "));
    hanging.perform([&end] { end.acquire(); });
    sound.perform([&isWritten] { isWritten = true; });
    DeferredWrites::finish({&hanging, &sound}, 1);
    EXPECT_TRUE(isWritten);
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("Error saving one: the disk didn't answer in time")});
    end.release();
}

TEST(DeferredWrites, areNotIdleWhileOneIsMade)
{
    std::binary_semaphore end(0);
    DeferredWrites writes("com.qorvane.test");
    EXPECT_TRUE(DeferredWrites::isIdle());
    writes.perform([&end] { end.acquire(); });
    EXPECT_FALSE(DeferredWrites::isIdle());
    end.release();
    DeferredWrites::waitUntilIdle();
    EXPECT_TRUE(DeferredWrites::isIdle());
}
