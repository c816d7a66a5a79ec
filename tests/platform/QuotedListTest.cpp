#include "platform/QuotedList.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(QuotedList, readsAsAList)
{
    EXPECT_EQ(quotedList({}), QStringLiteral("[]"));
    EXPECT_EQ(quotedList({QStringLiteral("/a/1.jpg"), QString(),
                          QStringLiteral("湖, 👩‍👩‍👧‍👦 'x'")}),
              QStringLiteral("[\"/a/1.jpg\", \"\", \"湖, 👩‍👩‍👧‍👦 'x'\"]"));
}

TEST(QuotedList, tellsItsOwnQuotesFromThoseOfATextAndStaysOneLine)
{
    EXPECT_EQ(quotedList({QStringLiteral("a \"b\""), QStringLiteral("back\\slash")}),
              QStringLiteral("[\"a \\\"b\\\"\", \"back\\\\slash\"]"));
    EXPECT_EQ(quotedList({QStringLiteral("1\n2\r3\t4\x1b 5\u0085\u2028\u2029") + QChar(u'\0')}),
              QStringLiteral("[\"1\\n2\\r3\\t4\\u{1b} 5\\u{85}\\u{2028}\\u{2029}\\0\"]"));
}
