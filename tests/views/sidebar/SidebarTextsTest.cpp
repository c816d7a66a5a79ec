#include "views/sidebar/SidebarTexts.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <limits>

using namespace Qorvane;

namespace {

/// In a country that groups the digits of large numbers.
class SidebarTextsTest : public testing::Test
{
protected:
    SidebarTextsTest() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    ~SidebarTextsTest() override { QLocale::setDefault(QLocale::system()); }
};

} // namespace

TEST_F(SidebarTextsTest, aCountIsItsBareDigits)
{
    SidebarRow row;
    row.count = 1234;
    EXPECT_EQ(SidebarTexts::countText(row), QStringLiteral("1234"));
    row.count = 0;
    EXPECT_EQ(SidebarTexts::countText(row), QStringLiteral("0"));
    row.count.reset();
    EXPECT_EQ(SidebarTexts::countText(row), QString());
}

TEST_F(SidebarTextsTest, aPercentageIsCutToItsBareDigits)
{
    EXPECT_EQ(SidebarTexts::percentText(0), QStringLiteral("0%"));
    EXPECT_EQ(SidebarTexts::percentText(0.999), QStringLiteral("99%"));
    EXPECT_EQ(SidebarTexts::percentText(12.5), QStringLiteral("1250%"));
    EXPECT_EQ(SidebarTexts::percentText(std::numeric_limits<double>::quiet_NaN()), QStringLiteral("0%"));
}
