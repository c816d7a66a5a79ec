#include "views/pictures/PictureQueue.h"
#include "views/pictures/ThumbnailProvider.h"
#include "views/window/ContentWindow.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

using namespace Qorvane;

namespace {

/// A shadow on white, around an area of 100 by 60 in the middle of a window.
class SoftShadowTest : public testing::Test
{
protected:
    SoftShadowTest()
    {
        setUpEngine(engine, std::make_unique<ThumbnailProvider>(std::make_shared<PictureQueue>(1)));
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nimport QtQuick.Window\nimport QorvaneStyle\n"
                          "Window { width: 240; height: 200; color: \"white\"; visible: true\n"
                          "  Item { x: 70; y: 70; width: 100; height: 60; SoftShadow { fall: 0 } } }",
                          QUrl());
        EXPECT_TRUE(component.isReady()) << qPrintable(component.errorString());
        window.reset(qobject_cast<QQuickWindow *>(component.create()));
    }

    void SetUp() override
    {
        ASSERT_TRUE(window);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }

    int darknessAt(QPointF place)
    {
        const double scale = window->effectiveDevicePixelRatio();
        return 255 - picture.pixelColor((place * scale).toPoint()).lightness();
    }

    QQmlEngine engine;
    std::unique_ptr<QQuickWindow> window;
    QImage picture;
};

} // namespace

TEST_F(SoftShadowTest, runsAlongEverySideAndFadesOut)
{
    picture = window->grabWindow();
    const int top = darknessAt({120, 68});
    EXPECT_GT(top, 40);
    EXPECT_NEAR(darknessAt({120, 132}), top, 6);
    EXPECT_NEAR(darknessAt({68, 100}), top, 6);
    EXPECT_NEAR(darknessAt({172, 100}), top, 6);
    // All along a side, also where a corner's piece of the picture meets the side's.
    for (int x = 82; x <= 158; ++x) {
        EXPECT_NEAR(darknessAt({double(x), 68}), top, 8) << x;
        EXPECT_NEAR(darknessAt({double(x), 132}), top, 8) << x;
    }
    for (int y = 82; y <= 118; ++y)
        EXPECT_NEAR(darknessAt({68, double(y)}), top, 8) << y;
    for (int away = 2; away < 22; ++away) {
        EXPECT_GE(darknessAt({120, 69.0 - away}), darknessAt({120, 68.0 - away})) << away;
        EXPECT_GE(darknessAt({69.0 - away, 100}), darknessAt({68.0 - away, 100})) << away;
    }
    EXPECT_EQ(darknessAt({120, 44}), 0);
    EXPECT_EQ(darknessAt({44, 44}), 0);
}
