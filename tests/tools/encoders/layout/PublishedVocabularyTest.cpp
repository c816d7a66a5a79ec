#include "encoders/layout/PublishedVocabulary.h"

#include "semantic/TokenizerVocabulary.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane::Encoders;

namespace {

class PublishedVocabularyTest : public testing::Test
{
protected:
    Outcome<PublishedVocabulary> read(const QString &name, const QByteArray &content) const
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            return problem({}, QStringLiteral("not written"), {});
        file.close();
        return readVocabularyFile(file.fileName());
    }

    QTemporaryDir m_folder;
};

TEST_F(PublishedVocabularyTest, CountsLinesAsIdsTheEmptyOnesToo)
{
    const auto vocabulary = read(QStringLiteral("vocab.txt"), "[PAD]\r\n\r\n[CLS]\n[SEP]\n  \n狗");
    ASSERT_TRUE(vocabulary) << vocabulary.error().text().toStdString();
    EXPECT_EQ(vocabulary->family, Family::chinese);
    EXPECT_EQ(vocabulary->endToken, 3);
    const auto read = Qorvane::parseVocabulary(vocabulary->json);
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, (Qorvane::TokenizerVocabulary{{QStringLiteral("[PAD]"), 0},
                                                   {QStringLiteral("[CLS]"), 2},
                                                   {QStringLiteral("[SEP]"), 3},
                                                   {QStringLiteral("  "), 4},
                                                   {QStringLiteral("狗"), 5}}));
}

TEST_F(PublishedVocabularyTest, TakesTheTokensOfATokenizersDescription)
{
    const auto vocabulary = read(QStringLiteral("tokenizer.json"),
                                 R"({"added_tokens": [{"id": 49407, "content": "<|endoftext|>"}],
            "model": {"type": "BPE", "vocab": {"\"a</w>": 1, "\u00e9\\": 2}, "merges": ["a b"]}})");
    ASSERT_TRUE(vocabulary) << vocabulary.error().text().toStdString();
    EXPECT_EQ(vocabulary->family, Family::openai);
    EXPECT_EQ(vocabulary->endToken, 49407);
    EXPECT_EQ(*Qorvane::parseVocabulary(vocabulary->json),
              (Qorvane::TokenizerVocabulary{{QStringLiteral("\"a</w>"), 1},
                                            {QStringLiteral("é\\"), 2},
                                            {QStringLiteral("<|endoftext|>"), 49407}}));
}

TEST_F(PublishedVocabularyTest, RefusesIdsThatWouldEndTheApplication)
{
    EXPECT_FALSE(read(QStringLiteral("vocab.json"), R"({"a": 1, "b": 4294967296})"));
    EXPECT_FALSE(read(QStringLiteral("vocab.json"), R"({"a": -1})"));
    EXPECT_FALSE(read(QStringLiteral("vocab.json"), R"({"a": "b"})"));
    EXPECT_FALSE(read(QStringLiteral("vocab.txt"), ""));
}

} // namespace
