#include "semantic/TokenizerService.h"
#include "support/LogCapture.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

using namespace Qorvane;

namespace {

constexpr int length = 77;

// Letters of several scripts, all the kinds of blanks, and characters of one to seven code points.
QStringList pieces()
{
    return {QStringLiteral("猫"),
            QStringLiteral("狗"),
            QStringLiteral("风景"),
            QStringLiteral("人物"),
            QStringLiteral("水果"),
            QStringLiteral("鳄"),
            QStringLiteral("𠮷"),
            QStringLiteral("，"),
            QStringLiteral("cat"),
            QStringLiteral("Cats"),
            QStringLiteral("DOG"),
            QStringLiteral("photo"),
            QStringLiteral("of"),
            QStringLiteral("a"),
            QStringLiteral("s"),
            QStringLiteral("Z"),
            QStringLiteral("3"),
            QStringLiteral("é"),
            QStringLiteral("e\u0301"),
            QStringLiteral("Σ"),
            QStringLiteral("İ"),
            QStringLiteral("ß"),
            QStringLiteral("Ж"),
            QStringLiteral("Ġ"),
            QStringLiteral("</w>"),
            QStringLiteral("🐈"),
            QStringLiteral("🐈‍⬛"),
            QStringLiteral("👨‍👩‍👧‍👦"),
            QStringLiteral("👍🏽"),
            QStringLiteral("🇨🇳"),
            QStringLiteral("🇨"),
            QStringLiteral("🏷️"),
            QStringLiteral("\u0301"),
            QStringLiteral("\u200D"),
            QStringLiteral("\uFE0F"),
            QStringLiteral("각"),
            QStringLiteral("\u1100\u1161"),
            QStringLiteral("\u0E33"),
            QStringLiteral("["),
            QStringLiteral("[CLS]"),
            QStringLiteral("-"),
            QStringLiteral(" "),
            QStringLiteral(" "),
            QStringLiteral("  "),
            QStringLiteral("\t"),
            QStringLiteral("\r\n"),
            QStringLiteral("\n"),
            QStringLiteral("\u3000"),
            QStringLiteral("\u00A0"),
            QStringLiteral("\u0085"),
            QStringLiteral("\u2028"),
            QStringLiteral("\u200B"),
            QStringLiteral("\v"),
            QStringLiteral("\u0001")};
}

QString mixture(std::mt19937 &random, std::size_t pieceCount)
{
    static const QStringList all = pieces();
    QString text;
    for (std::size_t i = 0; i < pieceCount; ++i)
        text += all[qsizetype(random() % std::size_t(all.size()))];
    return text;
}

QStringList texts()
{
    // A fixed seed: the same texts at every run and on every machine.
    std::mt19937 random(20240501);
    QStringList all{QString(QLatin1String("")),
                    QStringLiteral(" "),
                    QStringLiteral(" \n\t\u3000"),
                    QStringLiteral("猫"),
                    QStringLiteral("猫").repeated(10000),
                    QStringLiteral("cats ").repeated(2000),
                    mixture(random, 10000)};
    for (const int count : {74, 75, 76, 77, 78})
        all << QStringLiteral("猫").repeated(count) << QStringLiteral("a ").repeated(count);
    while (all.size() < 2500)
        all.append(mixture(random, random() % 40));
    return all;
}

// Keys are pieces and runs of pieces, so that matches of every length, and near misses, are frequent.
TokenizerVocabulary vocabulary(unsigned seed, const QStringList &fixed, bool hasPrefix, bool hasSuffix)
{
    std::mt19937 random(seed);
    TokenizerVocabulary keys;
    qint32 id = 1000;
    for (const QString &key : fixed)
        keys.insert_or_assign(key, ++id);
    for (int i = 0; i < 3000; ++i) {
        QString key = mixture(random, 1 + random() % 4);
        // Lower case for the most part: upper-case keys can't be hit in OpenAI mode.
        if (random() % 4 != 0)
            key = key.toLower();
        if (hasPrefix && random() % 3 == 0)
            key.prepend(QChar(0x0120));
        if (hasSuffix && random() % 3 == 0)
            key.append(QStringLiteral("</w>"));
        // A mixture may itself begin or end that way, and would give the trait away.
        if ((!hasPrefix && key.startsWith(QChar(0x0120))) ||
            (!hasSuffix && key.endsWith(QStringLiteral("</w>"))))
            continue;
        if (key != QStringLiteral("[CLS]"))
            keys.insert_or_assign(key, ++id);
    }
    return keys;
}

struct Expected
{
    QStringList tokens;
    TokenizerService::EncodedText encoded;
};

std::vector<qint32> numbers(const QByteArray &field)
{
    std::vector<qint32> values;
    for (const QByteArray &value : field.split(','))
        values.push_back(value.toInt());
    return values;
}

Expected parseLine(const QByteArray &line)
{
    const QList<QByteArray> fields = line.split('|');
    Expected expected;
    if (fields.size() != 3)
        return expected;
    if (!fields[0].isEmpty()) {
        for (const QByteArray &token : fields[0].split(','))
            expected.tokens.append(QString::fromUtf8(QByteArray::fromHex(token.mid(1))));
    }
    expected.encoded = {numbers(fields[1]), numbers(fields[2])};
    return expected;
}

class TokenizerReferenceTest : public testing::Test
{
protected:
    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    QList<Expected> reference(const TokenizerVocabulary &keys, const QStringList &all) const
    {
        QByteArray vocabularyLines;
        for (const auto &[token, id] : keys)
            vocabularyLines += token.toUtf8().toHex() + ' ' + QByteArray::number(id) + '\n';
        QByteArray textLines;
        for (const QString &text : all)
            textLines += text.toUtf8().toHex() + '\n';

        QProcess perl;
        perl.start(QStringLiteral(QORVANE_PERL),
                   {QStringLiteral(QORVANE_TOKENIZER_REFERENCE),
                    write(QStringLiteral("vocabulary"), vocabularyLines),
                    write(QStringLiteral("texts"), textLines), QString::number(length)});
        EXPECT_TRUE(perl.waitForFinished(-1));
        EXPECT_EQ(perl.readAllStandardError(), QByteArray());
        QList<Expected> expected;
        QList<QByteArray> lines = perl.readAllStandardOutput().split('\n');
        lines.removeLast();
        for (const QByteArray &line : lines)
            expected.append(parseLine(line));
        return expected;
    }

    void compare(const TokenizerVocabulary &keys, TokenizerService::Mode mode) const
    {
        const QStringList all = texts();
        const QList<Expected> expected = reference(keys, all);
        ASSERT_EQ(expected.size(), all.size());
        const LogCapture quiet;
        const TokenizerService service(keys);
        ASSERT_EQ(service.mode(), mode);
        for (qsizetype i = 0; i < all.size(); ++i) {
            const QStringList tokens = mode == TokenizerService::Mode::chineseClip
                                           ? service.tokenizeChinese(all[i])
                                           : service.tokenizeOpenAI(all[i]);
            ASSERT_EQ(tokens, expected[i].tokens) << "text " << i << ": " << all[i].toUtf8().toHex().data();
            ASSERT_EQ(service.encode(tokens, length), expected[i].encoded) << "text " << i;
        }
    }

    QTemporaryDir m_folder;
};

TEST_F(TokenizerReferenceTest, chineseModeAgreesOnEveryText)
{
    compare(vocabulary(1,
                       {QStringLiteral("[CLS]"), QStringLiteral("[SEP]"), QStringLiteral("[UNK]"),
                        QStringLiteral("[PAD]"), QStringLiteral("猫")},
                       true, true),
            TokenizerService::Mode::chineseClip);
}

TEST_F(TokenizerReferenceTest, chineseModeAgreesWithTheBaseVocabulary)
{
    compare(baseVocabulary(), TokenizerService::Mode::chineseClip);
}

TEST_F(TokenizerReferenceTest, openaiModeAgreesWithBothForms)
{
    compare(vocabulary(2, {QStringLiteral("a")}, true, true), TokenizerService::Mode::openaiClip);
}

TEST_F(TokenizerReferenceTest, openaiModeAgreesWithTheSpaceFormOnly)
{
    compare(vocabulary(3, {QStringLiteral("a"), QStringLiteral("Ġcat")}, true, false),
            TokenizerService::Mode::openaiClip);
}

TEST_F(TokenizerReferenceTest, openaiModeAgreesWithTheSuffixFormOnly)
{
    compare(vocabulary(4, {QStringLiteral("a"), QStringLiteral("cat</w>")}, false, true),
            TokenizerService::Mode::openaiClip);
}

TEST_F(TokenizerReferenceTest, openaiModeAgreesWithNeitherForm)
{
    compare(vocabulary(5, {QStringLiteral("a")}, false, false), TokenizerService::Mode::openaiClip);
}

TEST_F(TokenizerReferenceTest, openaiModeAgreesWithoutAnyKey)
{
    compare({}, TokenizerService::Mode::openaiClip);
}

} // namespace
