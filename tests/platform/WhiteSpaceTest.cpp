#include "platform/WhiteSpace.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(WhiteSpace, isEveryBlankAndLineEndAndTheZeroWidthSpace)
{
    for (const char16_t unit : {u'\t', u'\n', u'\v', u'\f', u'\r', u' ', u'\u0085', u'\u00a0', u'\u1680',
                                u'\u2003', u'\u200b', u'\u2028', u'\u2029', u'\u202f', u'\u3000'}) {
        EXPECT_TRUE(isWhiteSpace(unit)) << int(unit);
    }
    for (const char16_t unit : {u'a', u'\u5c71', u'\u200c', u'\u200d', u'\u2060', u'\ufeff'})
        EXPECT_FALSE(isWhiteSpace(unit)) << int(unit);
}

TEST(WhiteSpace, isTrimmedAtBothEndsOnly)
{
    EXPECT_EQ(trimmedWhiteSpace(QStringLiteral("\u200b \n big\u200b cat \u200b")),
              QStringLiteral("big\u200b cat"));
    EXPECT_EQ(trimmedWhiteSpace(QStringLiteral("cat")), QStringLiteral("cat"));
    EXPECT_EQ(trimmedWhiteSpace(QStringLiteral(" \u200b\t")), QString());
    EXPECT_EQ(trimmedWhiteSpace(QString()), QString());
}
