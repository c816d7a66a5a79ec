#include "platform/PredefinedTags.h"

#include "platform/Languages.h"

#include <QCryptographicHash>
#include <QSet>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

/// Of the entries with line feeds between them: any change of a letter or of the order shows.
QByteArray checksum(const QStringList &tags)
{
    return QCryptographicHash::hash(tags.join(u'\n').toUtf8(), QCryptographicHash::Sha256).toHex();
}

qsizetype distinctCount(const QStringList &tags)
{
    return QSet<QString>(tags.begin(), tags.end()).size();
}

} // namespace

TEST(PredefinedTags, theEnglishListIsWhole)
{
    const QStringList &tags = predefinedTagsEnglish();
    EXPECT_EQ(tags.size(), 955);
    EXPECT_EQ(distinctCount(tags), 928);
    EXPECT_EQ(tags.constFirst(), QStringLiteral("Portrait"));
    EXPECT_EQ(tags.constLast(), QStringLiteral("Traditional"));
    EXPECT_EQ(checksum(tags), QByteArray("c6bd2d077cbce6c7aac9196fe62c1d8ca04f9ff2bbdc6e7ea75f11f5183cb4a4"));
}

TEST(PredefinedTags, theChineseListIsWhole)
{
    const QStringList &tags = predefinedTagsChinese();
    EXPECT_EQ(tags.size(), 993);
    EXPECT_EQ(distinctCount(tags), 966);
    EXPECT_EQ(tags.constFirst(), QStringLiteral("人物"));
    EXPECT_EQ(tags.constLast(), QStringLiteral("娱乐"));
    EXPECT_EQ(checksum(tags), QByteArray("0abc511b9e6e77a684b29d860068692cc7347b1c2344c1f158a6520df0f3608a"));
}

TEST(PredefinedTags, noEntryIsBlankOrHasBlanksAround)
{
    for (const QStringList &tags : {predefinedTagsEnglish(), predefinedTagsChinese()}) {
        for (const QString &tag : tags) {
            EXPECT_FALSE(tag.isEmpty());
            EXPECT_EQ(tag, tag.simplified());
        }
    }
}

TEST(PredefinedTags, followTheLanguageOfTheMoment)
{
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    EXPECT_EQ(&predefinedTags(), &predefinedTagsChinese());
    Languages::overrideForTests({QStringLiteral("en-US")}, QStringLiteral("en"));
    EXPECT_EQ(&predefinedTags(), &predefinedTagsEnglish());
    Languages::endOverrideForTests();
}
