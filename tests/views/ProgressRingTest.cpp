#include "views/style/ProgressRing.h"

#include "support/Waiting.h"

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

constexpr int second = 1000;

} // namespace

TEST(ProgressRing, drawsNeverLessThanASliver)
{
    EXPECT_EQ(ProgressRing::drawnShare(0), 0.02);
    EXPECT_EQ(ProgressRing::drawnShare(0.02), 0.02);
    EXPECT_EQ(ProgressRing::drawnShare(0.5), 0.5);
    EXPECT_EQ(ProgressRing::drawnShare(1.5), 1.0);
}

TEST(ProgressRing, showsItsProgressAtOnceWithoutMotion)
{
    ProgressRing ring;
    ring.setProgress(0.4);
    EXPECT_EQ(ring.shownProgress(), 0.4);
    EXPECT_FALSE(ring.isSweeping());
}

TEST(ProgressRing, sweepsFromOneProgressToTheNextAgainAndAgain)
{
    ProgressRing ring;
    ring.setProgress(0.4);
    ring.setSweepDuration(second / 10);
    ring.setProgress(0.8);
    ASSERT_TRUE(ring.isSweeping());
    EXPECT_EQ(ring.shownProgress(), 0.4);
    EXPECT_TRUE(waitUntil([&ring] { return ring.shownProgress() > 0.5; }));
    const double seen = ring.shownProgress();
    EXPECT_TRUE(waitUntil([&] { return ring.shownProgress() < seen; })) << "it never began anew";
    EXPECT_GE(ring.shownProgress(), 0.4);
    EXPECT_LE(ring.shownProgress(), 0.8);
    EXPECT_TRUE(ring.isSweeping());
}

TEST(ProgressRing, goesBackAtOnce)
{
    ProgressRing ring;
    ring.setSweepDuration(second);
    ring.setProgress(0.8);
    ring.setProgress(0);
    EXPECT_EQ(ring.shownProgress(), 0);
    EXPECT_FALSE(ring.isSweeping());
}

TEST(ProgressRing, restsWhileNobodySeesIt)
{
    ProgressRing ring;
    ring.setSweepDuration(second);
    ring.setProgress(0.8);
    ASSERT_TRUE(ring.isSweeping());
    ring.setVisible(false);
    EXPECT_FALSE(ring.isSweeping());
    EXPECT_EQ(ring.shownProgress(), 0.8);
    ring.setProgress(0.9);
    EXPECT_FALSE(ring.isSweeping());
    EXPECT_EQ(ring.shownProgress(), 0.9);
}
