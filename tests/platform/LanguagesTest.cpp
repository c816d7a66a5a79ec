#include "platform/Languages.h"

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

class LanguagesTest : public testing::Test
{
protected:
    LanguagesTest() { clear(); }
    ~LanguagesTest() override
    {
        clear();
        qputenv("LC_ALL", "C.UTF-8");
        Languages::endOverrideForTests();
    }

private:
    static void clear()
    {
        for (const char *name :
             {"LC_ALL", "LC_MESSAGES", "LC_COLLATE", "LC_TIME", "LC_NUMERIC", "LANG", "LANGUAGE"})
            qunsetenv(name);
    }
};

TEST_F(LanguagesTest, aDesktopWithoutALocaleReadsEnglish)
{
    EXPECT_EQ(Languages::preferred(), QStringList{QStringLiteral("en")});
    EXPECT_EQ(Languages::currentLanguageCode(), QStringLiteral("en"));
    EXPECT_EQ(Languages::localeName(Languages::Aspect::collation), QStringLiteral("en_US"));
}

TEST_F(LanguagesTest, theCLocaleIsNoLanguage)
{
    for (const char *value : {"C", "POSIX", "C.UTF-8", "nonsense"}) {
        qputenv("LANG", value);
        EXPECT_EQ(Languages::preferred(), QStringList{QStringLiteral("en")}) << value;
        EXPECT_EQ(Languages::localeName(Languages::Aspect::dates), QStringLiteral("en_US")) << value;
    }
}

TEST_F(LanguagesTest, theMoreParticularVariableWins)
{
    qputenv("LANG", "de_DE.UTF-8");
    EXPECT_EQ(Languages::currentLanguageCode(), QStringLiteral("de"));
    qputenv("LC_MESSAGES", "fr_FR.UTF-8");
    EXPECT_EQ(Languages::currentLanguageCode(), QStringLiteral("fr"));
    qputenv("LC_ALL", "zh_CN.UTF-8");
    EXPECT_EQ(Languages::currentLanguageCode(), QStringLiteral("zh"));
    EXPECT_EQ(Languages::preferred(), QStringList{QStringLiteral("zh-Hans-CN")});
}

TEST_F(LanguagesTest, anEmptyVariableIsPassedOver)
{
    qputenv("LC_ALL", "");
    qputenv("LANG", "zh_TW.UTF-8");
    EXPECT_EQ(Languages::preferred(), QStringList{QStringLiteral("zh-Hant-TW")});
}

TEST_F(LanguagesTest, theListOfWishesComesBeforeTheLocale)
{
    qputenv("LANG", "en_GB.UTF-8");
    qputenv("LANGUAGE", "zh_CN:zh:de");
    EXPECT_EQ(Languages::preferred(), (QStringList{QStringLiteral("zh-Hans-CN"), QStringLiteral("zh-Hans"),
                                                   QStringLiteral("de"), QStringLiteral("en-GB")}));
    EXPECT_EQ(Languages::currentLanguageCode(), QStringLiteral("en"));
}

TEST_F(LanguagesTest, theListOfWishesIsNotHeardUnderTheCLocale)
{
    qputenv("LANGUAGE", "zh_CN");
    qputenv("LC_ALL", "C.UTF-8");
    EXPECT_EQ(Languages::preferred(), QStringList{QStringLiteral("en")});
}

TEST_F(LanguagesTest, eachAspectHasItsOwnVariable)
{
    qputenv("LANG", "en_GB.UTF-8");
    qputenv("LC_COLLATE", "sv_SE.UTF-8");
    qputenv("LC_TIME", "zh_CN.UTF-8@pinyin");
    qputenv("LC_NUMERIC", "C");
    EXPECT_EQ(Languages::localeName(Languages::Aspect::messages), QStringLiteral("en_GB"));
    EXPECT_EQ(Languages::localeName(Languages::Aspect::collation), QStringLiteral("sv_SE"));
    EXPECT_EQ(Languages::localeName(Languages::Aspect::dates), QStringLiteral("zh_CN"));
    EXPECT_EQ(Languages::localeName(Languages::Aspect::numbers), QStringLiteral("en_US"));
}

TEST_F(LanguagesTest, testsMayPutTheirOwnInPlace)
{
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    EXPECT_EQ(Languages::preferred(), QStringList{QStringLiteral("zh-Hans-CN")});
    EXPECT_EQ(Languages::currentLanguageCode(), QStringLiteral("zh"));
    Languages::endOverrideForTests();
    EXPECT_EQ(Languages::currentLanguageCode(), QStringLiteral("en"));
}

} // namespace
