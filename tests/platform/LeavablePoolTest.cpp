#include "platform/LeavablePool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <memory>
#include <vector>

using namespace Qorvane;

TEST(LeavablePool, runsTurnsInTheOrderTheyWereQueued)
{
    LeavablePool pool(QualityOfService::utility, 1);
    std::vector<int> order;
    for (int i = 0; i < 100; ++i)
        pool.start([&order, i] { order.push_back(i); });
    LeavablePool::waitUntilIdle();
    ASSERT_EQ(order.size(), 100U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(LeavablePool, runsAsManyAtATimeAsItMay)
{
    constexpr int threads = 3;
    LeavablePool pool(QualityOfService::utility, threads);
    std::latch all(threads); // none passes before all are there
    std::atomic_int running = 0;
    std::atomic_int most = 0;
    for (int i = 0; i < 4 * threads; ++i) {
        pool.start([&, i] {
            const int now = ++running;
            most = std::max(most.load(), now);
            if (i < threads)
                all.arrive_and_wait();
            --running;
        });
    }
    LeavablePool::waitUntilIdle();
    EXPECT_EQ(most, threads);
}

TEST(LeavablePool, mayBeLeftWhileATurnHangs)
{
    std::latch held(1);
    std::latch release(1);
    std::atomic_bool isOver = false;
    std::atomic_bool hasRunNext = false;
    const auto owned = std::make_shared<int>(0);
    {
        LeavablePool pool(QualityOfService::utility, 1);
        pool.start([&] {
            held.count_down();
            release.wait();
            isOver = true;
        });
        pool.start([&hasRunNext, owned] { hasRunNext = true; });
        held.wait();
    }
    EXPECT_FALSE(LeavablePool::isIdle());
    EXPECT_EQ(owned.use_count(), 1);
    release.count_down();
    LeavablePool::waitUntilIdle();
    EXPECT_TRUE(isOver);
    EXPECT_FALSE(hasRunNext);
    EXPECT_TRUE(LeavablePool::isIdle());
}

TEST(LeavablePool, letsATurnQueueAnother)
{
    LeavablePool pool(QualityOfService::utility, 1);
    std::atomic_bool hasRun = false;
    pool.start([&] { pool.start([&hasRun] { hasRun = true; }); });
    LeavablePool::waitUntilIdle();
    EXPECT_TRUE(hasRun);
}
