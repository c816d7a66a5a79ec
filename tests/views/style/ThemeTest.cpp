#include "platform/desktop/DesktopAppearance.h"
#include "support/ConsoleWatch.h"
#include "views/pictures/PictureQueue.h"
#include "views/pictures/ThumbnailProvider.h"
#include "views/style/Contrast.h"
#include "views/window/ContentWindow.h"

#include <QColor>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QUrl>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace Qorvane;

namespace {

// Relative luminance and contrast ratio as WCAG 2.1 defines them.
double luminance(const QColor &color)
{
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor &a, const QColor &b)
{
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor laidOver(const QColor &ground, const QColor &veil)
{
    const auto mix = [&](double below, double above) {
        return float(below + (above - below) * double(veil.alphaF()));
    };
    return QColor::fromRgbF(mix(ground.redF(), veil.redF()), mix(ground.greenF(), veil.greenF()),
                            mix(ground.blueF(), veil.blueF()));
}

class ThemeTest : public testing::TestWithParam<ColorScheme>
{
protected:
    ThemeTest()
    {
        DesktopAppearance::shared().setColorSchemeOverride(GetParam());
        setUpEngine(engine, std::make_unique<ThumbnailProvider>(std::make_shared<PictureQueue>(1),
                                                                [](const QString &) { return QImage(); }));
        QQmlComponent component(&engine);
        component.setData("import QtQml\nimport QorvaneStyle\nQtObject { property QtObject theme: Theme }",
                          QUrl());
        holder.reset(component.create());
        theme = holder ? holder->property("theme").value<QObject *>() : nullptr;
    }

    ~ThemeTest() override { DesktopAppearance::shared().setColorSchemeOverride(std::nullopt); }

    QColor color(const char *name) const { return theme->property(name).value<QColor>(); }

    const ConsoleWatch console;
    QQmlEngine engine;
    std::unique_ptr<QObject> holder;
    QObject *theme = nullptr;
};

} // namespace

TEST_P(ThemeTest, textsKeepTheirContrastOnEveryGround)
{
    ASSERT_TRUE(theme);
    for (const char *ink : {"text", "secondaryText"}) {
        for (const char *ground : {"window", "sidebar", "card", "field", "emptyCell", "popup"}) {
            EXPECT_GE(contrast(color(ink), color(ground)), 4.5) << ink << " on " << ground;
            EXPECT_GE(contrast(color(ink), laidOver(color(ground), color("hover"))), 4.5)
                << ink << " on hovered " << ground;
        }
    }
}

TEST_P(ThemeTest, buttonsStandOutFromTheirGroundAndTheirWordsFromThem)
{
    ASSERT_TRUE(theme);
    for (const char *ground : {"window", "popup"})
        EXPECT_GE(contrast(color("button"), color(ground)), 1.15) << ground;
    EXPECT_GE(contrast(color("text"), laidOver(color("button"), color("hover"))), 4.5);
    EXPECT_GE(contrast(color("text"), laidOver(color("button"), color("pressed"))), 4.5);
}

TEST_P(ThemeTest, theCaptionsOfProgressCanBeReadOnEveryStateOfTheirRow)
{
    ASSERT_TRUE(theme);
    for (const char *ink : {"orange", "blue"}) {
        EXPECT_GE(contrast(color(ink), color("sidebar")), 4.5) << ink;
        for (const char *veil : {"hover", "pressed"})
            EXPECT_GE(contrast(color(ink), laidOver(color("sidebar"), color(veil))), 4.5)
                << ink << " on a row with " << veil;
    }
}

TEST_P(ThemeTest, theCheckMarkOfAFinishedRunIsSeenOnEveryStateOfItsRow)
{
    ASSERT_TRUE(theme);
    EXPECT_GE(contrast(color("green"), color("sidebar")), 3);
    for (const char *veil : {"hover", "pressed"})
        EXPECT_GE(contrast(color("green"), laidOver(color("sidebar"), color(veil))), 3) << veil;
}

TEST_P(ThemeTest, whatTakesAwayKeepsItsContrastInAMenu)
{
    ASSERT_TRUE(theme);
    EXPECT_GE(contrast(color("destructive"), color("popup")), 4.5);
}

TEST_P(ThemeTest, wordsOnTheBuiltInAccentAreWhiteAndCanBeRead)
{
    ASSERT_TRUE(theme);
    EXPECT_GE(contrast(color("accentInk"), color("accentFill")), 4.5);
    EXPECT_EQ(color("accentInk"), QColor(Qt::white));
}

TEST(AccentFill, carriesWordsThatCanBeReadWhateverTheDesktopsAccentIs)
{
    for (const QColor &accent :
         {QColor(0xFF, 0xE0, 0x00), QColor(Qt::white), QColor(Qt::black), QColor(0x35, 0x84, 0xE4),
          QColor(0x3A, 0x94, 0x4A), QColor(0xED, 0x5B, 0x00), QColor(0x00, 0xFF, 0xFF),
          QColor(0x91, 0x91, 0x91), QColor(0x95, 0x95, 0x95)}) {
        const QColor fill = readableFill(accent);
        EXPECT_GE(contrast(inkOn(fill), fill), 4.5) << qPrintable(accent.name());
    }
}

TEST(AccentFill, staysTheDesktopsColour)
{
    const QColor yellow(0xFF, 0xE0, 0x00);
    EXPECT_EQ(readableFill(yellow), yellow);
    const QColor green(0x3A, 0x94, 0x4A);
    EXPECT_NEAR(readableFill(green).hue(), green.hue(), 3);
    const QColor dark(0x50, 0x20, 0x60);
    EXPECT_EQ(readableFill(dark), dark);
}

INSTANTIATE_TEST_SUITE_P(Schemes, ThemeTest, testing::Values(ColorScheme::light, ColorScheme::dark));
