#include "platform/Characters.h"

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

TEST(Characters, aReadersCharacterIsOneHoweverManyCodePointsItTakes)
{
    for (const QString &one : {QStringLiteral("a"), QStringLiteral("猫"), QStringLiteral("e\u0301"),
                               QStringLiteral("👨‍👩‍👧‍👦"), QStringLiteral("🇨🇳"),
                               QStringLiteral("👍🏽"), QStringLiteral("🏷️"), QStringLiteral("\r\n"),
                               QStringLiteral("각"), QStringLiteral("\u1100\u1161\u11A8"),
                               QStringLiteral("𠮷"), QStringLiteral("ก\u0E33"), QStringLiteral("ກ\u0EB3")}) {
        EXPECT_EQ(characters(one), QStringList{one}) << one.toStdString();
        EXPECT_EQ(characterCount(one), 1) << one.toStdString();
    }
}

TEST(Characters, anEmptyTextHasNone)
{
    EXPECT_TRUE(characters(QString()).isEmpty());
    EXPECT_EQ(characterCount(QString()), 0);
    EXPECT_EQ(characterBoundaries(QString()), QList<qsizetype>{0});
}

TEST(Characters, cutsBetweenNeighbours)
{
    EXPECT_EQ(characters(QStringLiteral("e\u0301a猫🇨🇳🇨🇳")),
              (QStringList{QStringLiteral("e\u0301"), QStringLiteral("a"), QStringLiteral("猫"),
                           QStringLiteral("🇨🇳"), QStringLiteral("🇨🇳")}));
}

TEST(Characters, boundariesCountUtf16Units)
{
    EXPECT_EQ(characterBoundaries(QStringLiteral("a𠮷b")), (QList<qsizetype>{0, 1, 3, 4}));
}

TEST(Characters, halfASurrogatePairIsACharacterOfItsOwn)
{
    const QString text = QString(QChar(0xD83D)) + u'a' + QChar(0xDE00);
    EXPECT_EQ(characterCount(text), 3);
    EXPECT_EQ(characters(text).join(QString()), text);
}

} // namespace
