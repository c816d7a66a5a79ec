#include "IdleWatch.h"

#include "support/Waiting.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

using std::chrono::milliseconds;

TEST(IdleWatch, tellsOnceWhenNothingIsBeingDone)
{
    int looks = 0;
    IdleWatch watch([&looks] { return ++looks < 5; }, milliseconds(1));
    QSignalSpy idle(&watch, &IdleWatch::idle);
    watch.start();
    ASSERT_TRUE(waitUntil([&idle] { return idle.count() > 0; }));
    EXPECT_EQ(looks, 6);
    drainMainQueue();
    EXPECT_EQ(idle.count(), 1);
    EXPECT_EQ(looks, 6);
}

TEST(IdleWatch, oneIdleLookBetweenTwoStepsOfTheWorkIsNotTheEnd)
{
    int looks = 0;
    IdleWatch watch([&looks] { return ++looks != 2 && looks < 4; }, milliseconds(1));
    QSignalSpy idle(&watch, &IdleWatch::idle);
    watch.start();
    ASSERT_TRUE(waitUntil([&idle] { return idle.count() > 0; }));
    EXPECT_EQ(looks, 5);
}

TEST(IdleWatch, startedAnewItForgetsWhatItSaw)
{
    int looks = 0;
    IdleWatch watch(
        [&] {
            if (++looks == 1)
                watch.start();
            return false;
        },
        milliseconds(1));
    QSignalSpy idle(&watch, &IdleWatch::idle);
    watch.start();
    ASSERT_TRUE(waitUntil([&idle] { return idle.count() > 0; }));
    EXPECT_GE(looks, 2);
}

} // namespace
