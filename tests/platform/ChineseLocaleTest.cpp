#include "platform/ChineseLocale.h"

#include "platform/Languages.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(ChineseLocale, goesByTheFirstLanguageOrElseTheLocale)
{
    const auto isChinese = [](const QStringList &preferred, const char *code) {
        Languages::overrideForTests(preferred, QLatin1String(code));
        return isChineseLocale();
    };
    EXPECT_TRUE(isChinese({QStringLiteral("zh-Hans-CN"), QStringLiteral("en")}, "en"));
    EXPECT_TRUE(isChinese({QStringLiteral("ZH")}, "en"));
    EXPECT_TRUE(isChinese({QStringLiteral("en-CN")}, "zh"));
    EXPECT_TRUE(isChinese({}, "ZH"));
    EXPECT_FALSE(isChinese({QStringLiteral("en"), QStringLiteral("zh-Hans-CN")}, "en"));
    EXPECT_FALSE(isChinese({}, ""));
    Languages::endOverrideForTests();
}
