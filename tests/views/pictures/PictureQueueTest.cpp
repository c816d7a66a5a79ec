#include "views/pictures/PictureQueue.h"

#include "platform/LeavablePool.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>

using namespace Qorvane;

namespace {

// One thread, held at its first piece of work, so that the order of the rest can be arranged.
class PictureQueueTest : public testing::Test
{
protected:
    PictureQueueTest()
    {
        queue->add(QStringLiteral("gate"), [this] {
            held.set_value();
            gate.get_future().wait();
            return [this] { isDelivered = true; };
        });
        held.get_future().wait();
    }

    ~PictureQueueTest() override
    {
        open();
        // The queue doesn't wait for its work, which uses this.
        LeavablePool::waitUntilIdle();
    }

    PictureQueue::Ticket add(const QString &path)
    {
        return queue->add(path, [this, path] {
            const std::scoped_lock lock(mutex);
            done.append(path);
            changed.notify_all();
            return PictureQueue::Delivery();
        });
    }

    void open()
    {
        if (!std::exchange(isOpen, true))
            gate.set_value();
    }

    QStringList runToTheEnd()
    {
        queue->setVisiblePaths(visible);
        open();
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return done.size() == expected; });
        return done;
    }

    std::promise<void> held;
    std::promise<void> gate;
    bool isOpen = false;
    bool isDelivered = false;
    std::mutex mutex;
    std::condition_variable changed;
    QStringList done;
    qsizetype expected = 0;
    QSet<QString> visible;
    std::unique_ptr<PictureQueue> queue = std::make_unique<PictureQueue>(1);
};

} // namespace

TEST_F(PictureQueueTest, servesTheNewestFirst)
{
    for (const char *path : {"1", "2", "3"})
        add(QString::fromLatin1(path));
    expected = 3;
    EXPECT_EQ(runToTheEnd(), (QStringList{QStringLiteral("3"), QStringLiteral("2"), QStringLiteral("1")}));
}

TEST_F(PictureQueueTest, servesWhatIsInViewFirstAndInOrder)
{
    for (const char *path : {"1", "2", "3", "4"})
        add(QString::fromLatin1(path));
    visible = {QStringLiteral("1"), QStringLiteral("2")};
    expected = 4;
    EXPECT_EQ(runToTheEnd(), (QStringList{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("4"),
                                          QStringLiteral("3")}));
}

TEST_F(PictureQueueTest, dropsWorkBeforeItsTurn)
{
    const PictureQueue::Ticket dead = add(QStringLiteral("dead"));
    add(QStringLiteral("alive"));
    EXPECT_TRUE(queue->drop(dead));
    EXPECT_FALSE(queue->drop(dead));
    expected = 1;
    EXPECT_EQ(runToTheEnd(), QStringList{QStringLiteral("alive")});
}

TEST_F(PictureQueueTest, deliversWhatWasMade)
{
    open();
    LeavablePool::waitUntilIdle();
    EXPECT_TRUE(isDelivered);
}

TEST_F(PictureQueueTest, goesWithoutWaitingForWorkThatHangs)
{
    add(QStringLiteral("never"));
    queue.reset();
    open();
    LeavablePool::waitUntilIdle();
    EXPECT_TRUE(done.isEmpty());
    EXPECT_FALSE(isDelivered);
}

TEST_F(PictureQueueTest, onceClosedDeliversNothingAndTakesNothing)
{
    add(QStringLiteral("never"));
    queue->close();
    add(QStringLiteral("late"));
    open();
    LeavablePool::waitUntilIdle();
    EXPECT_TRUE(done.isEmpty());
    EXPECT_FALSE(isDelivered);
}
