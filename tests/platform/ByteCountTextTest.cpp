#include "platform/ByteCountText.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qorvane;

namespace {

QString english(qint64 bytes)
{
    return byteCountText(bytes, QStringLiteral("en_US"));
}

TEST(ByteCountText, bytesAndKilobytesHaveNoDecimals)
{
    EXPECT_EQ(english(1), QStringLiteral("1 byte"));
    EXPECT_EQ(english(999), QStringLiteral("999 bytes"));
    EXPECT_EQ(english(1000), QStringLiteral("1 KB"));
    EXPECT_EQ(english(1499), QStringLiteral("1 KB"));
    EXPECT_EQ(english(1501), QStringLiteral("2 KB"));
    EXPECT_EQ(english(532'800), QStringLiteral("533 KB"));
}

TEST(ByteCountText, megabytesHaveAtMostOneDecimal)
{
    EXPECT_EQ(english(1'000'000), QStringLiteral("1 MB"));
    EXPECT_EQ(english(1'540'000), QStringLiteral("1.5 MB"));
    EXPECT_EQ(english(24'960'000), QStringLiteral("25 MB"));
}

TEST(ByteCountText, gigabytesHaveAtMostTwoDecimalsAndAreTheLargestUnit)
{
    EXPECT_EQ(english(1'000'000'000), QStringLiteral("1 GB"));
    EXPECT_EQ(english(2'254'000'000), QStringLiteral("2.25 GB"));
    EXPECT_EQ(english(5'123'456'000'000), QStringLiteral("5,123.46 GB"));
    EXPECT_EQ(english(std::numeric_limits<qint64>::max()), QStringLiteral("9,223,372,036.85 GB"));
}

TEST(ByteCountText, whatWouldRoundUpToAThousandIsToldInTheNextUnit)
{
    EXPECT_EQ(english(999'499), QStringLiteral("999 KB"));
    EXPECT_EQ(english(999'500), QStringLiteral("1 MB"));
    EXPECT_EQ(english(999'949'999), QStringLiteral("999.9 MB"));
    EXPECT_EQ(english(999'950'000), QStringLiteral("1 GB"));
}

TEST(ByteCountText, nothingIsSpeltOut)
{
    EXPECT_EQ(english(0), QStringLiteral("Zero KB"));
    EXPECT_EQ(byteCountText(0, QStringLiteral("zh_CN")), QStringLiteral("零KB"));
}

TEST(ByteCountText, speaksTheLocale)
{
    EXPECT_EQ(byteCountText(512, QStringLiteral("zh_CN")), QStringLiteral("512字节"));
    EXPECT_EQ(byteCountText(1'540'000, QStringLiteral("zh_CN")), QStringLiteral("1.5 MB"));
    EXPECT_EQ(byteCountText(1'540'000, QStringLiteral("de_DE")), QStringLiteral("1,5 MB"));
    EXPECT_EQ(byteCountText(2000), QStringLiteral("2 KB"));
}

} // namespace
