#include "semantic/TokenizerService.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

// What every caller passes, in both modes.
constexpr int length = 77;

TokenizerService service(const TokenizerVocabulary &vocabulary)
{
    const LogCapture quiet;
    return TokenizerService(vocabulary);
}

std::vector<qint32> padded(std::vector<qint32> values, qint32 pad = 0)
{
    values.resize(length, pad);
    return values;
}

QString repeated(const QString &text, int count)
{
    return text.repeated(count);
}

TEST(TokenizerMode, followsFromTheVocabularyAlone)
{
    LogCapture log;
    EXPECT_EQ(TokenizerService({{QStringLiteral("[CLS]"), 1}, {QStringLiteral("[SEP]"), 2}}).mode(),
              TokenizerService::Mode::chineseClip);
    EXPECT_EQ(TokenizerService({{QStringLiteral("[CLS]"), 1}}).mode(), TokenizerService::Mode::openaiClip);
    EXPECT_EQ(TokenizerService({{QStringLiteral("[SEP]"), 1}}).mode(), TokenizerService::Mode::openaiClip);
    EXPECT_EQ(TokenizerService(TokenizerVocabulary()).mode(), TokenizerService::Mode::openaiClip);
    EXPECT_EQ(log.lines(), (QStringList{QStringLiteral("🧠 Tokenizer mode: Chinese-CLIP"),
                                        QStringLiteral("🧠 Tokenizer mode: OpenAI-CLIP"),
                                        QStringLiteral("🧠 Tokenizer mode: OpenAI-CLIP"),
                                        QStringLiteral("🧠 Tokenizer mode: OpenAI-CLIP")}));
}

TEST(TokenizerMode, derivesWhatTheKeysHaveInCommonInOpenaiModeOnly)
{
    const TokenizerService chinese = service(
        {{QStringLiteral("[CLS]"), 1}, {QStringLiteral("[SEP]"), 2}, {QStringLiteral("Ġlong key</w>"), 3}});
    EXPECT_EQ(chinese.openaiMaxTokenLength(), 1);
    EXPECT_FALSE(chinese.openaiHasSpacePrefix());
    EXPECT_FALSE(chinese.openaiHasEndOfWordSuffix());

    const TokenizerService openai =
        service({{QStringLiteral("Ġcat"), 1}, {QStringLiteral("dogs</w>"), 2}, {QStringLiteral("a"), 3}});
    EXPECT_EQ(openai.openaiMaxTokenLength(), 8);
    EXPECT_TRUE(openai.openaiHasSpacePrefix());
    EXPECT_TRUE(openai.openaiHasEndOfWordSuffix());

    const TokenizerService empty = service({});
    EXPECT_EQ(empty.openaiMaxTokenLength(), 1);
    EXPECT_FALSE(empty.openaiHasSpacePrefix());
}

TEST(TokenizerMode, theLongestKeyIsCountedInCharacters)
{
    EXPECT_EQ(service({{QStringLiteral("👨‍👩‍👧‍👦"), 1}, {QStringLiteral("ab"), 2}})
                  .openaiMaxTokenLength(),
              2);
}

TEST(TokenizerMode, eachModeAnswersOnlyItsOwnTokenization)
{
    EXPECT_TRUE(service(baseVocabulary()).tokenizeOpenAI(QStringLiteral("cat")).isEmpty());
    EXPECT_TRUE(service({{QStringLiteral("cat"), 1}}).tokenizeChinese(QStringLiteral("猫")).isEmpty());
}

TEST(TokenizeChinese, knownCharactersBecomeTheirIds)
{
    const TokenizerService tokenizer = service(baseVocabulary());
    const QStringList tokens = tokenizer.tokenizeChinese(QStringLiteral("猫狗"));
    EXPECT_EQ(tokens, (QStringList{QStringLiteral("[CLS]"), QStringLiteral("猫"), QStringLiteral("狗"),
                                   QStringLiteral("[SEP]")}));
    const TokenizerService::EncodedText encoded = tokenizer.encode(tokens, length);
    EXPECT_EQ(encoded.ids, padded({101, 4344, 4318, 102}));
    EXPECT_EQ(encoded.mask, padded({1, 1, 1, 1}));
}

TEST(TokenizeChinese, aCharacterThatIsNoKeyIsKeptAndEncodesAsUnknown)
{
    const TokenizerService tokenizer = service(baseVocabulary());
    const QStringList tokens = tokenizer.tokenizeChinese(QStringLiteral("鳄👨‍👩‍👧‍👦é"));
    EXPECT_EQ(tokens, (QStringList{QStringLiteral("[CLS]"), QStringLiteral("鳄"),
                                   QStringLiteral("👨‍👩‍👧‍👦"), QStringLiteral("é"),
                                   QStringLiteral("[SEP]")}));
    EXPECT_EQ(tokenizer.encode(tokens, length).ids, padded({101, 100, 100, 100, 102}));
}

TEST(TokenizeChinese, blanksGiveNoToken)
{
    const TokenizerService tokenizer = service(baseVocabulary());
    const QString text = QStringLiteral(" 猫 \t\r\n\u3000\u00A0\u2028\u200B狗\u0085\n");
    EXPECT_EQ(tokenizer.tokenizeChinese(text), tokenizer.tokenizeChinese(QStringLiteral("猫狗")));
}

TEST(TokenizeChinese, aBlankThatCarriesAnAccentIsNoBlank)
{
    const TokenizerService tokenizer = service(baseVocabulary());
    EXPECT_EQ(tokenizer.tokenizeChinese(QStringLiteral(" \u0301")),
              (QStringList{QStringLiteral("[CLS]"), QStringLiteral(" \u0301"), QStringLiteral("[SEP]")}));
}

TEST(TokenizeChinese, aBlankThatIsAKeyIsAToken)
{
    TokenizerVocabulary vocabulary = baseVocabulary();
    vocabulary.emplace(QStringLiteral(" "), 7);
    EXPECT_EQ(service(vocabulary).tokenizeChinese(QStringLiteral(" ")).size(), 3);
}

TEST(TokenizeChinese, anEmptyTextGivesTheTwoFrameTokens)
{
    EXPECT_EQ(service(baseVocabulary()).tokenizeChinese(QString()),
              (QStringList{QStringLiteral("[CLS]"), QStringLiteral("[SEP]")}));
}

TEST(TokenizeChinese, aLongTextIsCutAndLosesItsEndToken)
{
    const TokenizerService tokenizer = service(baseVocabulary());
    const auto encoded =
        tokenizer.encode(tokenizer.tokenizeChinese(repeated(QStringLiteral("猫"), 80)), length);
    std::vector<qint32> expected(length, 4344);
    expected.front() = 101;
    EXPECT_EQ(encoded.ids, expected);
    EXPECT_EQ(encoded.mask, std::vector<qint32>(length, 1));
}

TEST(TokenizeChinese, theLongestKeyOfAtMostFourCharactersWins)
{
    TokenizerVocabulary vocabulary = baseVocabulary();
    for (const QString &key : {QStringLiteral("水果"), QStringLiteral("风景人物"),
                               QStringLiteral("风景人物水"), QStringLiteral("dogs"), QStringLiteral("d")})
        vocabulary.emplace(key, 9);
    const TokenizerService tokenizer = service(vocabulary);
    // "风景" and "风景人" are no keys: a gap doesn't end the search. Five characters are never looked at.
    EXPECT_EQ(tokenizer.tokenizeChinese(QStringLiteral("风景人物水果dogsDd")),
              (QStringList{QStringLiteral("[CLS]"), QStringLiteral("风景人物"), QStringLiteral("水果"),
                           QStringLiteral("dogs"), QStringLiteral("D"), QStringLiteral("d"),
                           QStringLiteral("[SEP]")}));
}

TEST(TokenizeChinese, nothingIsNormalised)
{
    TokenizerVocabulary vocabulary = baseVocabulary();
    vocabulary.emplace(QStringLiteral("\u00E9"), 9);
    const TokenizerService tokenizer = service(vocabulary);
    EXPECT_EQ(tokenizer.encode(tokenizer.tokenizeChinese(QStringLiteral("e\u0301\u00E9")), length).ids,
              padded({101, 100, 9, 102}));
}

TEST(EncodeChinese, missingSpecialTokensFallBackToZero)
{
    const TokenizerService bare = service({{QStringLiteral("[CLS]"), 1}, {QStringLiteral("[SEP]"), 2}});
    EXPECT_EQ(bare.encode(bare.tokenizeChinese(QStringLiteral("猫")), length).ids, padded({1, 0, 2}));

    const TokenizerService full = service({{QStringLiteral("[CLS]"), 1},
                                           {QStringLiteral("[SEP]"), 2},
                                           {QStringLiteral("[PAD]"), 5},
                                           {QStringLiteral("[UNK]"), 6}});
    const auto encoded = full.encode(full.tokenizeChinese(QStringLiteral("猫")), length);
    EXPECT_EQ(encoded.ids, padded({1, 6, 2}, 5));
    EXPECT_EQ(encoded.mask, padded({1, 1, 1}));
}

TEST(TokenizeOpenai, anEmptyTextEncodesAsStartAndEnd)
{
    const TokenizerService tokenizer = service({{QStringLiteral("cat"), 1}});
    EXPECT_TRUE(tokenizer.tokenizeOpenAI(QString()).isEmpty());
    const auto encoded = tokenizer.encode({}, length);
    EXPECT_EQ(encoded.ids, padded({49406, 49407}));
    EXPECT_EQ(encoded.mask, padded({1, 1}));
}

TEST(TokenizeOpenai, anArrayThatJustFitsKeepsItsEndTokenAndOneMoreLosesIt)
{
    const TokenizerService tokenizer = service({{QStringLiteral("a"), 1}});
    std::vector<qint32> expected(length, 1);
    expected.front() = 49406;

    const auto fitting = tokenizer.tokenizeOpenAI(repeated(QStringLiteral("a"), 75));
    expected.back() = 49407;
    EXPECT_EQ(tokenizer.encode(fitting, length).ids, expected);

    const auto longer = tokenizer.tokenizeOpenAI(repeated(QStringLiteral("a"), 76));
    expected.back() = 1;
    EXPECT_EQ(tokenizer.encode(longer, length).ids, expected);
    EXPECT_EQ(tokenizer.encode(longer, length).mask, std::vector<qint32>(length, 1));
}

TEST(TokenizeOpenai, upperCaseInputMatchesLowerCaseKeys)
{
    const TokenizerService tokenizer = service({{QStringLiteral("cat"), 1}, {QStringLiteral("é"), 2}});
    EXPECT_EQ(tokenizer.tokenizeOpenAI(QStringLiteral("CAT É")),
              (QStringList{QStringLiteral("cat"), QStringLiteral("é")}));
}

TEST(TokenizeOpenai, whatIsInNoKeyDisappears)
{
    const TokenizerService tokenizer = service({{QStringLiteral("cat"), 1}});
    EXPECT_EQ(tokenizer.tokenizeOpenAI(QStringLiteral("🐈 cat🐈‍⬛猫 x")),
              QStringList{QStringLiteral("cat")});
}

TEST(TokenizeOpenai, aWordBehindABlankPrefersItsSpaceForm)
{
    const TokenizerService tokenizer =
        service({{QStringLiteral("cat"), 1}, {QStringLiteral("Ġcat"), 2}, {QStringLiteral("s"), 3}});
    EXPECT_EQ(tokenizer.tokenizeOpenAI(QStringLiteral("cat cat")),
              (QStringList{QStringLiteral("cat"), QStringLiteral("Ġcat")}));
    // The place in the whole text decides: behind leading blanks the first word isn't at the start.
    EXPECT_EQ(tokenizer.tokenizeOpenAI(QStringLiteral("\ncats")),
              (QStringList{QStringLiteral("Ġcat"), QStringLiteral("s")}));
    // Inside a word the space form is no candidate.
    EXPECT_EQ(tokenizer.tokenizeOpenAI(QStringLiteral("s scat")),
              (QStringList{QStringLiteral("s"), QStringLiteral("s"), QStringLiteral("cat")}));
}

TEST(TokenizeOpenai, theEndOfAWordPrefersItsSuffixForm)
{
    const TokenizerService tokenizer = service({{QStringLiteral("cat"), 1},
                                                {QStringLiteral("cat</w>"), 2},
                                                {QStringLiteral("s</w>"), 3},
                                                {QStringLiteral("s"), 4}});
    EXPECT_EQ(tokenizer.tokenizeOpenAI(QStringLiteral("cat cats ss")),
              (QStringList{QStringLiteral("cat</w>"), QStringLiteral("cat"), QStringLiteral("s</w>"),
                           QStringLiteral("s"), QStringLiteral("s</w>")}));
}

TEST(TokenizeOpenai, theSpaceFormComesBeforeTheSuffixFormAndTheLongerPieceBeforeBoth)
{
    const TokenizerService tokenizer = service({{QStringLiteral("Ġcat"), 1},
                                                {QStringLiteral("cat</w>"), 2},
                                                {QStringLiteral("Ġdo"), 3},
                                                {QStringLiteral("dog"), 4}});
    EXPECT_EQ(tokenizer.tokenizeOpenAI(QStringLiteral("dog cat dog")),
              (QStringList{QStringLiteral("dog"), QStringLiteral("Ġcat"), QStringLiteral("dog")}));
}

TEST(TokenizeOpenai, pieceLengthsAreScalarsAgainstALimitInCharacters)
{
    // The one key is one character, so pieces of one scalar are all that is tried: it is never found.
    const TokenizerService tokenizer = service({{QStringLiteral("👨‍👩‍👧"), 1}});
    EXPECT_TRUE(tokenizer.tokenizeOpenAI(QStringLiteral("👨‍👩‍👧")).isEmpty());
}

TEST(EncodeOpenai, aMissingTokenIsTriedWithoutItsSpacePrefixes)
{
    const TokenizerService tokenizer = service({{QStringLiteral("cat"), 1}, {QStringLiteral("Ġdog"), 2}});
    const QStringList tokens{QStringLiteral("ĠĠcat"), QStringLiteral("Ġdog"), QStringLiteral("dog"),
                             QStringLiteral("Ġ"), QStringLiteral("Ġ\u0301cat")};
    EXPECT_EQ(tokenizer.encode(tokens, length).ids, padded({49406, 1, 2, 49407}));
}

TEST(Encode, otherLengthsAreKeptToo)
{
    const TokenizerService chinese = service(baseVocabulary());
    EXPECT_EQ(chinese.encode(chinese.tokenizeChinese(QStringLiteral("猫狗")), 3).ids,
              (std::vector<qint32>{101, 4344, 4318}));
    EXPECT_TRUE(chinese.encode({QStringLiteral("[CLS]")}, 0).ids.empty());
    const TokenizerService openai = service({{QStringLiteral("a"), 1}});
    EXPECT_EQ(openai.encode({}, 1).ids, std::vector<qint32>{49406});
    EXPECT_TRUE(openai.encode({}, 0).mask.empty());
}

} // namespace
