#include "platform/Localization.h"

#include "platform/Languages.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

class LocalizationTest : public testing::Test
{
protected:
    ~LocalizationTest() override { Languages::endOverrideForTests(); }

    static void install(const QStringList &languages)
    {
        Languages::overrideForTests(languages, languages.value(0).left(2));
        Localization::install();
    }
};

// First in this program, so that nothing is installed yet.
TEST_F(LocalizationTest, aKeyStandsForItselfBeforeAnyTranslationIsInstalled)
{
    EXPECT_EQ(localized("处理完成"), QStringLiteral("处理完成"));
    EXPECT_EQ(localized("File Name"), QStringLiteral("File Name"));
    EXPECT_EQ(localizedFormat("thumb_progress", 3, 12), QStringLiteral("thumb_progress"));
}

TEST_F(LocalizationTest, anEnglishReaderReadsEnglish)
{
    install({QStringLiteral("en-US")});
    EXPECT_EQ(localized("处理完成"), QStringLiteral("Done"));
    EXPECT_EQ(localized("File Name"), QStringLiteral("File Name"));
    EXPECT_EQ(localizedFormat("thumb_progress", 3, 12), QStringLiteral("Previews: 3/12"));
    EXPECT_EQ(localizedFormat("embed_progress", 12, 12), QStringLiteral("AI analysis: 12/12"));
}

TEST_F(LocalizationTest, aChineseReaderReadsChinese)
{
    for (const char *language : {"zh-Hans-CN", "zh", "zh-Hant-TW"}) {
        install({QLatin1String(language)});
        EXPECT_EQ(localized("处理完成"), QStringLiteral("处理完成"));
        EXPECT_EQ(localized("File Name"), QStringLiteral("文件名"));
        EXPECT_EQ(localizedFormat("thumb_progress", 3, 12), QStringLiteral("缩略图: 3/12"));
        EXPECT_EQ(localizedFormat("embed_progress", 0, 12), QStringLiteral("向量: 0/12"));
    }
}

TEST_F(LocalizationTest, aCountTakesTheFormOfItsLanguage)
{
    const auto selected = [](int count) {
        return QCoreApplication::translate(Localization::context, "items_selected", "Items selected count",
                                           count);
    };
    install({QStringLiteral("en-US")});
    EXPECT_EQ(selected(1), QStringLiteral("1 item selected"));
    EXPECT_EQ(selected(12), QStringLiteral("12 items selected"));
    install({QStringLiteral("zh-Hans-CN")});
    EXPECT_EQ(selected(12), QStringLiteral("已选择 12 项"));
}

TEST_F(LocalizationTest, theFirstWishThatCanBeMetDecides)
{
    install({QStringLiteral("de-DE"), QStringLiteral("zh-Hans-CN"), QStringLiteral("en-US")});
    EXPECT_EQ(localized("File Name"), QStringLiteral("文件名"));
    install({QStringLiteral("de-DE"), QStringLiteral("en-US"), QStringLiteral("zh-Hans-CN")});
    EXPECT_EQ(localized("处理完成"), QStringLiteral("Done"));
}

TEST_F(LocalizationTest, aReaderOfNeitherReadsEnglish)
{
    install({QStringLiteral("fr-FR")});
    EXPECT_EQ(localized("处理完成"), QStringLiteral("Done"));
}

TEST_F(LocalizationTest, anUnknownKeyComesBackAsItIs)
{
    install({QStringLiteral("zh-Hans-CN")});
    EXPECT_EQ(localized("不在表中 🏷️ %1"), QStringLiteral("不在表中 🏷️ %1"));
}

} // namespace
