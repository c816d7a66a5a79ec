// What becomes of the main queue at the end of an application: the tests make applications of their own.

#include "platform/MainQueue.h"
#include "support/OwnApplication.h"
#include "support/TestHome.h"

#include <QFutureWatcher>
#include <QPromise>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <thread>
#include <vector>

using namespace Qorvane;

namespace {

/// Queues a block when it goes.
struct Parting
{
    ~Parting()
    {
        MainQueue::async([told = told] { *told = true; });
    }
    std::shared_ptr<bool> told = std::make_shared<bool>(false);
};

} // namespace

TEST(ApplicationEnd, isNotHeldUpByABlockWithAPromiseThatSomebodyWatches)
{
    OwnApplication application;
    auto promise = std::make_shared<QPromise<int>>();
    promise->start();
    QFutureWatcher<int> watcher;
    watcher.setFuture(promise->future());
    MainQueue::async([promise = std::move(promise)] { promise->finish(); });
    application.end();
    EXPECT_TRUE(watcher.future().isCanceled());
}

TEST(ApplicationEnd, dropsWhatItsLastBlocksQueueAsTheyGo)
{
    OwnApplication application;
    auto parting = std::make_shared<Parting>();
    const std::shared_ptr<bool> told = parting->told;
    MainQueue::async([parting = std::move(parting)] {});
    application.end();
    EXPECT_FALSE(*told);
}

TEST(ApplicationEnd, leavesNothingForTheNextApplication)
{
    std::optional<OwnApplication> application(std::in_place);
    std::vector<int> order;
    MainQueue::async([&order] { order.push_back(1); });
    application->end();
    MainQueue::async([&order] { order.push_back(2); });
    application.emplace();
    MainQueue::async([&order] { order.push_back(3); });
    MainQueue::async([&order] { order.push_back(4); });
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(order, (std::vector{3, 4}));
}

TEST(ApplicationEnd, meetsThreadsThatGoOnQueuing)
{
    OwnApplication application;
    constexpr int blocks = 20'000;
    std::thread queuing([] {
        for (int i = 0; i < blocks; ++i)
            MainQueue::async([] {});
    });
    QCoreApplication::sendPostedEvents();
    application.end();
    queuing.join();
}

int main(int argc, char **argv)
{
    const TestHome home;
    testing::InitGoogleTest(&argc, argv);
    return home.isValid() ? RUN_ALL_TESTS() : 1;
}
