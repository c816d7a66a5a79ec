#include "encoders/starter/BytePairVocabulary.h"
#include "encoders/starter/WordTable.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace Qorvane::Encoders {
namespace {

WordPiece someWordPiece()
{
    const QStringList pieces{QStringLiteral("[UNK]"), QStringLiteral("snow"),  QStringLiteral("##board"),
                             QStringLiteral("##ers"), QStringLiteral("board"), QStringLiteral("dog"),
                             QStringLiteral("'"),     QStringLiteral("s"),     QStringLiteral("cafe"),
                             QStringLiteral("##s")};
    QHash<QString, int> vocabulary;
    for (qsizetype id = 0; id < pieces.size(); ++id)
        vocabulary.insert(pieces.at(id), int(id));
    return WordPiece(vocabulary);
}

TEST(WordPiece, TakesTheLongestPieceEachTime)
{
    EXPECT_EQ(someWordPiece().ids(QStringLiteral("Snowboarders board")), (std::vector<int>{1, 2, 3, 4}));
}

TEST(WordPiece, CutsAtSignsAndForgetsAccents)
{
    EXPECT_EQ(someWordPiece().ids(QStringLiteral("dog's Café")), (std::vector<int>{5, 6, 7, 8}));
}

TEST(WordPiece, AWordThatCannotBeCutIsUnknownAsAWhole)
{
    EXPECT_EQ(someWordPiece().ids(QStringLiteral("snowx dog")), (std::vector<int>{0, 5}));
}

TEST(WordPiece, GoesOnAWord)
{
    EXPECT_EQ(someWordPiece().ids(QStringLiteral("board"), true), std::vector<int>{2});
    EXPECT_EQ(someWordPiece().ids(QStringLiteral("'s"), true), (std::vector<int>{6, 7}));
}

TEST(WordPiece, ReadsATokenizerFileAndRefusesOthers)
{
    const auto read = WordPiece::fromTokenizerJson(
        R"({"model": {"type": "WordPiece", "continuing_subword_prefix": "##", "vocab": {"a": 0, "##b": 1}}})");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->ids(QStringLiteral("ab")), (std::vector<int>{0, 1}));
    EXPECT_FALSE(WordPiece::fromTokenizerJson(R"({"model": {"type": "BPE", "vocab": {"a": 0}}})"));
    EXPECT_FALSE(WordPiece::fromTokenizerJson("no JSON"));
}

TEST(TokenTable, HasARowForEachPlaceInAWord)
{
    const QStringList tokens{QStringLiteral("snow"), QStringLiteral("board</w>"), QStringLiteral("'s</w>"),
                             QStringLiteral("'"), QStringLiteral("<|endoftext|>")};
    const TokenTable table = TokenTable::make(tokens, someWordPiece());
    const auto row = [&](std::size_t token, std::size_t inside) {
        std::vector<std::int32_t> pieces;
        for (std::size_t column = 0; column < std::size_t(TokenTable::piecesPerToken); ++column) {
            const auto piece =
                table.pieces[(2 * token + inside) * std::size_t(TokenTable::piecesPerToken) + column];
            if (piece != TokenTable::noPiece)
                pieces.push_back(piece);
        }
        return pieces;
    };
    EXPECT_EQ(row(0, 0), std::vector<std::int32_t>{1});
    EXPECT_EQ(row(1, 0), std::vector<std::int32_t>{4});
    EXPECT_EQ(row(1, 1), std::vector<std::int32_t>{2});
    EXPECT_EQ(row(2, 1), (std::vector<std::int32_t>{6, 7}));
    EXPECT_TRUE(row(4, 0).empty());
    // A word goes on behind a part of it, but neither behind its end nor behind a sign.
    EXPECT_EQ(table.goesOn, (std::vector<std::int32_t>{1, 0, 0, 0, 0}));
}

TEST(WordTable, KeepsOnlyWordsThatComeOutWrong)
{
    const TokenTable table = TokenTable::make(
        {QStringLiteral("snow"), QStringLiteral("board</w>"), QStringLiteral("do"), QStringLiteral("g</w>")},
        someWordPiece());
    const auto tokenize = [](const QString &word) -> std::vector<std::int32_t> {
        if (word == QStringLiteral("snowboard"))
            return {0, 1};
        return word == QStringLiteral("dog") ? std::vector<std::int32_t>{2, 3} : std::vector<std::int32_t>{0};
    };
    const WordTable words =
        WordTable::make({QStringLiteral("snowboard"), QStringLiteral("dog"), QStringLiteral("snow")},
                        tokenize, table, someWordPiece());
    ASSERT_EQ(words.lengths.size(), 3U);
    EXPECT_EQ(words.base, 4);
    EXPECT_EQ(words.lengths[0].tokens, 2);
    EXPECT_EQ(words.lengths[0].keys, std::vector<std::int64_t>{2 * 4 + 3});
    EXPECT_EQ(words.lengths[0].pieces, (std::vector<float>{6, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(words.lengths[1].keys.empty());
}

// As many merges as are used, none of them meaningful.
QByteArray someMerges(int count)
{
    QByteArray merges = "\"a title\"\n";
    for (int merge = 0; merge < count; ++merge)
        merges += 'x' + QByteArray::number(merge) + " y\n";
    return merges;
}

TEST(BytePairVocabulary, PutsTokensInTheOrderOfTheirIds)
{
    const auto tokens = bytePairVocabulary(someMerges(50'000));
    ASSERT_TRUE(tokens);
    ASSERT_EQ(tokens->size(), 49408);
    EXPECT_EQ(tokens->at(0), QStringLiteral("!"));
    EXPECT_EQ(tokens->at(64), QStringLiteral("a"));
    EXPECT_EQ(tokens->at(188), QString(QChar(0x100)));
    EXPECT_EQ(tokens->at(256), QStringLiteral("!</w>"));
    EXPECT_EQ(tokens->at(512), QStringLiteral("x0y"));
    EXPECT_EQ(tokens->at(49406), QStringLiteral("<|startoftext|>"));
    EXPECT_EQ(tokens->at(49407), QStringLiteral("<|endoftext|>"));
}

TEST(BytePairVocabulary, RefusesAListThatIsTooShort)
{
    const auto tokens = bytePairVocabulary(someMerges(100));
    ASSERT_FALSE(tokens);
    EXPECT_TRUE(tokens.error().found.contains(QStringLiteral("100")));
}

TEST(BytePairVocabulary, IsWrittenAsTokenToId)
{
    const auto object =
        QJsonDocument::fromJson(vocabularyJson({QStringLiteral("a\"b"), QStringLiteral("猫")})).object();
    EXPECT_EQ(object, (QJsonObject{{QStringLiteral("a\"b"), 0}, {QStringLiteral("猫"), 1}}));
}

} // namespace
} // namespace Qorvane::Encoders
