#include "headless/ShownText.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(ShownText, keepsWhatReadersWrite)
{
    for (const char *text : {"", "山水画", "شاطئ البحر", "חוף הים", "👩‍👩‍👧‍👦 family",
                             "🏳️‍🌈", "❤️",
                             "\xf0\x9f\x8f\xb4\xf3\xa0\x81\xa7\xf3\xa0\x81\xa2\xf3\xa0\x81\xa5\xf3\xa0\x81"
                             "\xae\xf3\xa0\x81\xa7\xf3\xa0\x81\xbf",
                             "می\u200cخواهم", "e\u0301", "𝒜 \"b\" \\"})
        EXPECT_EQ(shown(QString::fromUtf8(text)), QString::fromUtf8(text));
}

TEST(ShownText, replacesWhatBreaksALineOrControlsATerminal)
{
    for (const char16_t unit :
         {u'\0', u'\n', u'\r', u'\t', u'\x1b', u'\x7f', u'\x85', u'\x9b', u'\u2028', u'\u2029'})
        EXPECT_EQ(shown(u'a' + QString(QChar(unit)) + u'b'), QStringLiteral("a\uFFFDb")) << int(unit);
}

TEST(ShownText, replacesWhatTurnsTheOrderOfLettersAroundOrHides)
{
    for (const char16_t unit : {u'\u061c', u'\u200b', u'\u200e', u'\u200f', u'\u202a', u'\u202b', u'\u202c',
                                u'\u202d', u'\u202e', u'\u2066', u'\u2067', u'\u2068', u'\u2069', u'\ufeff'})
        EXPECT_EQ(shown(u'a' + QString(QChar(unit)) + u'b'), QStringLiteral("a\uFFFDb")) << int(unit);
}
