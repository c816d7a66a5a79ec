#include "views/style/ProgressRing.h"

#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace Qorvane;

namespace {

constexpr int second = 1000;

/// Draws the ring as large as can be looked at, and tells how dense it is at an angle, clockwise from the
/// top.
class DrawnRing
{
public:
    explicit DrawnRing(ProgressRing &ring)
        : m_picture(int(ring.width()) * scale, int(ring.height()) * scale, QImage::Format_ARGB32)
    {
        m_picture.fill(Qt::transparent);
        QPainter painter(&m_picture);
        painter.scale(scale, scale);
        ring.paint(&painter);
    }

    QColor at(double degrees) const
    {
        const double angle = degrees / 180 * std::numbers::pi;
        const double middle = m_picture.width() / 2.0;
        const double radius = middle - scale; // the middle of a line two wide
        return m_picture.pixelColor(int(middle + radius * std::sin(angle)),
                                    int(middle - radius * std::cos(angle)));
    }

private:
    static constexpr int scale = 8;

    QImage m_picture;
};

/// A ring that turns in a window.
class RingInWindow : public testing::Test
{
protected:
    RingInWindow()
    {
        ring.setParentItem(window.contentItem());
        ring.setSize({16, 16});
        ring.setSweepDuration(second);
    }

    void SetUp() override
    {
        window.resize(100, 100);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        ring.setProgress(0.5);
        ASSERT_TRUE(draws());
    }

    // A few frames come whatever happens; a ring that turns draws thirty in a second.
    bool draws(std::chrono::milliseconds patience = std::chrono::seconds(60))
    {
        QSignalSpy frames(&window, &QQuickWindow::frameSwapped);
        return waitUntil([&] { return frames.count() >= 5; }, patience);
    }

    QQuickWindow window;
    ProgressRing ring;
};

} // namespace

TEST(ProgressRing, drawsNeverLessThanASliver)
{
    EXPECT_EQ(ProgressRing::drawnShare(0), 0.02);
    EXPECT_EQ(ProgressRing::drawnShare(0.02), 0.02);
    EXPECT_EQ(ProgressRing::drawnShare(0.5), 0.5);
    EXPECT_EQ(ProgressRing::drawnShare(1.5), 1.0);
}

TEST(ProgressRing, isDrawnClockwiseFromTheTopOverAFaintCircle)
{
    ProgressRing ring;
    ring.setSize(QSizeF(16, 16));
    ring.setColor(Qt::blue);
    ring.setProgress(0.25);
    const DrawnRing drawn(ring);
    for (const double done : {2.0, 45.0, 88.0})
        EXPECT_EQ(drawn.at(done), QColor(Qt::blue)) << done;
    for (const double left : {135.0, 225.0, 315.0}) {
        EXPECT_NEAR(drawn.at(left).alphaF(), 0.3, 0.01) << left;
        EXPECT_EQ(drawn.at(left).blue(), 255) << left;
    }
}

TEST(ProgressRing, ofNoProgressASliverIsDrawn)
{
    ProgressRing ring;
    ring.setSize(QSizeF(16, 16));
    ring.setColor(Qt::blue);
    const DrawnRing drawn(ring);
    EXPECT_EQ(drawn.at(3), QColor(Qt::blue));
    EXPECT_LT(drawn.at(45).alphaF(), 0.5);
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

TEST(ProgressRing, sweepsEvenly)
{
    constexpr int duration = 60 * second; // no turn of it ends during the test
    constexpr int enoughSteps = 15;
    ProgressRing ring;
    ring.setSweepDuration(duration);
    // The ring's own time begins between these two, and each of its steps is taken between two looks.
    QElapsedTimer fromBefore;
    QElapsedTimer fromAfter;
    fromBefore.start();
    ring.setProgress(1);
    fromAfter.start();
    int steps = 0;
    qint64 earliest = 0;
    double last = ring.shownProgress();
    EXPECT_TRUE(waitUntil([&] {
        if (const double shown = ring.shownProgress(); shown != last) {
            EXPECT_GE(shown, double(earliest) / duration);
            EXPECT_LE(shown, double(fromBefore.elapsed()) / duration);
            last = shown;
            ++steps;
        }
        earliest = fromAfter.elapsed();
        return steps == enoughSteps;
    }));
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

TEST_F(RingInWindow, drawsNothingOutOfView)
{
    ring.setInView(false);
    EXPECT_FALSE(draws(std::chrono::milliseconds(600)));
    EXPECT_FALSE(ring.isSweeping());
    ring.setProgress(0.7);
    ring.setProgress(0.9);
    EXPECT_FALSE(draws(std::chrono::milliseconds(600)));
    ring.setInView(true);
    EXPECT_TRUE(draws());
    EXPECT_TRUE(ring.isSweeping());
}

TEST_F(RingInWindow, showsWhatHasChangedOutOfView)
{
    ring.setInView(false);
    ring.setProgress(0);
    ring.setColor(Qt::red);
    ring.setInView(true);
    EXPECT_EQ(ring.shownProgress(), 0);
    EXPECT_TRUE(waitUntil([this] { return window.grabWindow().pixelColor(8, 1).red() > 200; }));
    EXPECT_FALSE(ring.isSweeping());
}

TEST_F(RingInWindow, restsWhileItsWindowIsHidden)
{
    window.hide();
    EXPECT_TRUE(waitUntil([this] { return !ring.isSweeping(); }));
    ring.setProgress(0.8);
    EXPECT_FALSE(ring.isSweeping());
    window.show();
    EXPECT_TRUE(waitUntil([this] { return ring.isSweeping(); }));
    EXPECT_TRUE(draws());
}

TEST_F(RingInWindow, restsWhileItsWindowIsMinimised)
{
    window.showMinimized();
    EXPECT_TRUE(waitUntil([this] { return !ring.isSweeping(); }));
    EXPECT_FALSE(draws(std::chrono::milliseconds(600)));
    window.showNormal();
    window.update(); // as a window system asks for it
    EXPECT_TRUE(waitUntil([this] { return ring.isSweeping(); }));
    EXPECT_TRUE(draws());
}
