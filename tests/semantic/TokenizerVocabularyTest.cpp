#include "semantic/TokenizerVocabulary.h"

#include "platform/Directories.h"
#include "platform/Languages.h"
#include "semantic/TokenizerService.h"
#include "support/LogCapture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

const QString warning = QStringLiteral(
    "⚠️ 未找到词汇表，使用基础词汇表（搜索质量可能受影响）。请将 "
    "`Qorvane/chinese_vocab.json` 或 `Qorvane/vocab.json` 加入目标资源。");

class LoadVocabularyTest : public testing::Test
{
protected:
    LoadVocabularyTest() { QDir().mkpath(resources()); }

    // Two levels below the temporary folder, so that "../../" stays inside it.
    QString resources() const { return m_folder.filePath(QStringLiteral("share/qorvane")); }

    void write(const QString &relative, const QByteArray &content) const
    {
        const QString path = resources() + u'/' + relative;
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QTemporaryDir m_folder;
    LogCapture m_log;
};

TEST_F(LoadVocabularyTest, theResourceOfTheLanguageIsTaken)
{
    write(QStringLiteral("chinese_vocab.json"), R"({"猫": 5, "狗": 6})");
    write(QStringLiteral("vocab.json"), R"({"cat": 7})");

    EXPECT_EQ(loadVocabulary(true, {resources()}).at(QStringLiteral("猫")), 5);
    EXPECT_EQ(loadVocabulary(false, {resources()}).at(QStringLiteral("cat")), 7);
    EXPECT_EQ(m_log.lines(),
              (QStringList{QStringLiteral("✅ 成功从Bundle加载中文词汇表 chinese_vocab.json，共 2 个token"),
                           QStringLiteral("✅ 成功从Bundle加载词汇表 vocab.json，共 1 个token")}));
}

TEST_F(LoadVocabularyTest, theOtherLanguagesFileIsNotTaken)
{
    write(QStringLiteral("vocab.json"), R"({"cat": 7})");
    EXPECT_EQ(loadVocabulary(true, {resources()}), baseVocabulary());
    EXPECT_EQ(m_log.lines(), QStringList{warning});
}

TEST_F(LoadVocabularyTest, withoutAnyFileTheBaseVocabularyServesAndTheModeIsChinese)
{
    const TokenizerService service(false, {resources()});
    EXPECT_EQ(service.mode(), TokenizerService::Mode::chineseClip);
    EXPECT_EQ(m_log.lines(), (QStringList{warning, QStringLiteral("🧠 Tokenizer mode: Chinese-CLIP")}));
}

TEST_F(LoadVocabularyTest, withoutAnyResourceFolderTheBaseVocabularyServes)
{
    EXPECT_EQ(loadVocabulary(true, {}), baseVocabulary());
    EXPECT_EQ(loadVocabulary(false, {}).size(), 16u);
}

TEST_F(LoadVocabularyTest, theDevelopmentPlacesAreTriedInOrder)
{
    const QStringList places{QStringLiteral("../../vocab.json"), QStringLiteral("../vocab.json"),
                             QStringLiteral("Qorvane/vocab.json")};
    int count = 0;
    for (const QString &place : places) {
        QByteArray json = "{";
        for (int i = 0; i <= count; ++i)
            json += (i > 0 ? ",\"k" : "\"k") + QByteArray::number(i) + "\":1";
        write(place, json + "}");
        ++count;
        m_log.clear();
        EXPECT_EQ(loadVocabulary(false, {resources()}).size(), size_t(count));
        EXPECT_EQ(m_log.lines(),
                  QStringList{QStringLiteral("✅ 成功从开发路径加载词汇表：") + resources() + u'/' + place +
                              QStringLiteral("，共 ") + QString::number(count) + QStringLiteral(" 个token")});
    }
}

TEST_F(LoadVocabularyTest, aFileThatCannotBeParsedIsPassedOverInSilence)
{
    write(QStringLiteral("chinese_vocab.json"), "[1, 2");
    write(QStringLiteral("Qorvane/chinese_vocab.json"), "[\"a list\"]");
    write(QStringLiteral("../chinese_vocab.json"), R"({"猫": 5})");

    EXPECT_EQ(loadVocabulary(true, {resources()}).at(QStringLiteral("猫")), 5);
    EXPECT_EQ(m_log.lines(), QStringList{QStringLiteral("✅ 成功从开发路径加载词汇表：") + resources() +
                                         QStringLiteral("/../chinese_vocab.json，共 1 个token")});
}

TEST_F(LoadVocabularyTest, aVocabularyWithoutFrameTokensGivesTheOpenaiModeAlsoInChinese)
{
    write(QStringLiteral("chinese_vocab.json"), R"({"猫": 5})");
    EXPECT_EQ(TokenizerService(true, {resources()}).mode(), TokenizerService::Mode::openaiClip);
}

TEST_F(LoadVocabularyTest, anEnglishVocabularyWithFrameTokensGivesTheChineseMode)
{
    write(QStringLiteral("vocab.json"), R"({"[CLS]": 5, "[SEP]": 6})");
    EXPECT_EQ(TokenizerService(false, {resources()}).mode(), TokenizerService::Mode::chineseClip);
}

TEST_F(LoadVocabularyTest, anEmptyObjectIsAVocabulary)
{
    write(QStringLiteral("vocab.json"), "{}");
    EXPECT_EQ(TokenizerService(false, {resources()}).mode(), TokenizerService::Mode::openaiClip);
    EXPECT_TRUE(m_log.contains(QStringLiteral("✅ 成功从Bundle加载词汇表 vocab.json，共 0 个token")));
}

TEST(ParseVocabulary, entriesThatAreNoIntegerAreLeftOut)
{
    const auto vocabulary = parseVocabulary(
        R"({"a": 1, "b": 2.5, "c": "3", "d": null, "e": [4], "f": {"g": 5}, "h": -6, "i": 7.0, "j": 1e300,
            "\u732b": 8, "": 9})");
    ASSERT_TRUE(vocabulary.has_value());
    EXPECT_EQ(*vocabulary, (TokenizerVocabulary{{QStringLiteral("a"), 1},
                                                {QStringLiteral("h"), -6},
                                                {QStringLiteral("i"), 7},
                                                {QStringLiteral("猫"), 8},
                                                {QString(QLatin1String("")), 9}}));
}

TEST(ParseVocabulary, theWholeRangeOf32BitsIsTaken)
{
    const auto vocabulary = parseVocabulary(R"({"least": -2147483648, "most": 2147483647})");
    ASSERT_TRUE(vocabulary.has_value());
    EXPECT_EQ(vocabulary->at(QStringLiteral("least")), std::numeric_limits<qint32>::min());
    EXPECT_EQ(vocabulary->at(QStringLiteral("most")), std::numeric_limits<qint32>::max());
}

TEST(ParseVocabularyDeathTest, anIntegerThatDoesNotFit32BitsEndsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(parseVocabulary(R"({"a": 2147483648})"), "doesn't fit 32 bits: 2147483648");
    EXPECT_DEATH(parseVocabulary(R"({"a": -9223372036854775807})"), "doesn't fit 32 bits");
}

TEST(ParseVocabulary, anythingButAnObjectIsAFailure)
{
    for (const char *json : {"", "[]", "7", "\"text\"", "{\"a\": 1", "{\"a\": 1} x", "null"})
        EXPECT_FALSE(parseVocabulary(json).has_value()) << json;
}

TEST(SharedTokenizer, isMadeOnceFromTheUsersLanguageAndResources)
{
    const QString models = Directories::applicationSupport().value() + QStringLiteral("/Qorvane/models");
    ASSERT_TRUE(QDir().mkpath(models));
    QFile file(models + QStringLiteral("/chinese_vocab.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"({"[CLS]": 1, "[SEP]": 2, "鳄": 3})");
    file.close();
    LogCapture log;
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    const TokenizerService &first = TokenizerService::shared();
    Languages::overrideForTests({QStringLiteral("en-US")}, QStringLiteral("en"));

    EXPECT_EQ(&TokenizerService::shared(), &first);
    EXPECT_EQ(first.mode(), TokenizerService::Mode::chineseClip);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("🧠")).size(), 1);
    Languages::endOverrideForTests();
}

} // namespace
