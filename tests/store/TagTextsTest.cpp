// Tags are free text: whatever a user enters is kept, and found again, to the letter.

#include "platform/Characters.h"
#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

#include <algorithm>

using namespace Qorvane;

namespace {

QString allControlCharacters()
{
    QString text = QStringLiteral("a");
    for (char16_t unit = 1; unit < 0x20; ++unit)
        text += QChar(unit);
    for (char16_t unit = 0x7f; unit < 0xa0; ++unit)
        text += QChar(unit);
    return text + u'z'; // so that nothing is trimmed
}

// Each begins unlike any other, whatever the case, so that a search by the beginning finds one.
QStringList awkwardTags()
{
    return {
        QStringLiteral("山水画"),
        QStringLiteral("شاطئ البحر"),
        QStringLiteral("חוף הים"),
        QStringLiteral("\u202eright to left\u202c"),
        QStringLiteral("👩‍👩‍👧‍👦 family"),
        QStringLiteral("🏳️‍🌈"),
        QStringLiteral("\u00e9t\u00e9 composed"),
        QStringLiteral("e\u0301te\u0301 apart"),
        QStringLiteral("हिन्दी"),
        QStringLiteral("𝒜𝓁𝓁 beyond the first plane"),
        QStringLiteral("\uFFFD replaced"),
        QStringLiteral("\uFEFFmarked"),
        QStringLiteral("\uFEFF\uFEFFmarked twice"),
        QStringLiteral("\uFFFF no character"),
        QStringLiteral("'single' ''quotes"),
        QStringLiteral("\"double\""),
        QStringLiteral("back\\slash\\"),
        QStringLiteral("'; DROP TABLE image_tags; --"),
        QStringLiteral("x' OR '1'='1"),
        QStringLiteral("?1 :name @name $name"),
        QStringLiteral("NULL"),
        QStringLiteral("0x00"),
        QStringLiteral("12"),
        QStringLiteral("1e3"),
        QStringLiteral("line\nbreak\r\nand\ttab"),
        allControlCharacters(),
    };
}

class TagTextsTest : public StoreFixture
{
protected:
    /// A file of its own for the tag, and one that has all.
    void addAll(const QStringList &tags)
    {
        for (const QString &tag : tags) {
            store.addTag(pathOf(tags, tag), tag);
            store.addTag(everything, tag);
        }
    }

    static QString pathOf(const QStringList &tags, const QString &tag)
    {
        return QStringLiteral("/p/%1.jpg").arg(tags.indexOf(tag));
    }

    static QStringList sorted(QStringList texts)
    {
        texts.sort();
        return texts;
    }

    EmbeddingStore store;
    const QString everything = QStringLiteral("/p/everything.jpg");
};

} // namespace

TEST_F(TagTextsTest, everyTextIsStoredListedAndFoundToTheLetter)
{
    const QStringList tags = awkwardTags();
    addAll(tags);
    EXPECT_EQ(sorted(store.listAllTags()), sorted(tags));
    EXPECT_EQ(sorted(store.getTags(everything)), sorted(tags));
    for (const QString &tag : tags) {
        SCOPED_TRACE(qPrintable(tag));
        EXPECT_EQ(store.getTags(pathOf(tags, tag)), QStringList(tag));
        EXPECT_EQ(sorted(store.fetchPathsByTag(tag)), sorted({pathOf(tags, tag), everything}));
        EXPECT_EQ(store.getTagCount(tag), 2);
        EXPECT_EQ(store.getAllTagCounts().value(tag), 2);
        EXPECT_EQ(store.searchTags(tag, 5, false), QStringList(tag));
    }
    // And as bytes, whatever the reading makes of them.
    QStringList literals;
    for (const QString &tag : tags)
        literals.append(QString::fromLatin1(tag.toUtf8().toHex().toUpper()));
    QStringList stored = RawDatabase(databasePath()).rows("SELECT DISTINCT hex(tag) FROM image_tags");
    EXPECT_EQ(sorted(stored), sorted(literals));
}

TEST_F(TagTextsTest, everyTextIsReplacedAndRemovedAloneAndEverywhere)
{
    const QStringList tags = awkwardTags();
    addAll(tags);
    const auto without = [&tags](const QString &tag) {
        QStringList others = tags;
        others.removeAll(tag);
        return sorted(others);
    };
    const QString other = QStringLiteral("something else");
    for (const QString &tag : tags) {
        SCOPED_TRACE(qPrintable(tag));
        store.removeTag(everything, tag);
        EXPECT_EQ(sorted(store.getTags(everything)), without(tag));
        store.addTag(everything, tag);

        store.replaceTag(pathOf(tags, tag), tag, other);
        EXPECT_EQ(store.getTags(pathOf(tags, tag)), QStringList(other));
        store.replaceTag(pathOf(tags, tag), other, tag);
        EXPECT_EQ(store.getTags(pathOf(tags, tag)), QStringList(tag));

        store.deleteTagGlobally(tag);
        EXPECT_EQ(sorted(store.listAllTags()), without(tag));
        addAll({tag});
        store.addTag(pathOf(tags, tag), tag);
    }
}

TEST_F(TagTextsTest, wildcardsAreLettersButInASearch)
{
    const QString path = QStringLiteral("/p/a.jpg");
    for (const char *tag : {"100%", "100x", "a_b", "axb", "%", "_"})
        store.addTag(path, QString::fromLatin1(tag));
    EXPECT_EQ(store.getTagCount(QStringLiteral("100%")), 1);
    EXPECT_EQ(store.getTagCount(QStringLiteral("%")), 1);
    EXPECT_EQ(store.fetchPathsByTag(QStringLiteral("a%")), QStringList());
    EXPECT_EQ(store.searchTags(QStringLiteral("a_b"), 5, false), QStringList({"a_b", "axb"}));
    store.removeTag(path, QStringLiteral("a_b"));
    EXPECT_EQ(store.getTagCount(QStringLiteral("axb")), 1);
    store.replaceTag(path, QStringLiteral("_"), QStringLiteral("score"));
    EXPECT_EQ(store.getTagCount(QStringLiteral("%")), 1);
    store.deleteTagGlobally(QStringLiteral("100%"));
    store.deleteTagGlobally(QStringLiteral("%"));
    EXPECT_EQ(store.getTags(path), QStringList({"100x", "axb", "score"}));
}

TEST_F(TagTextsTest, tenThousandCharactersAreATagLikeAnyOther)
{
    const QString path = QStringLiteral("/p/a.jpg");
    const QString oneMore = QStringLiteral("!");
    for (const char *piece : {"x", "山", "👩‍👩‍👧‍👦", "' OR 1 --."}) {
        SCOPED_TRACE(piece);
        const QString unit = QString::fromUtf8(piece);
        const QString tag = unit.repeated(int(10'000 / characterCount(unit)));
        ASSERT_EQ(characterCount(tag), 10'000);
        store.addTag(path, tag);
        store.addTag(path, tag + oneMore); // told apart by their last character
        EXPECT_EQ(store.getTags(path), QStringList({tag, tag + oneMore}));
        EXPECT_EQ(store.listAllTags(), QStringList({tag, tag + oneMore}));
        EXPECT_EQ(store.fetchPathsByTag(tag), QStringList(path));
        EXPECT_EQ(store.searchTags(unit, 5, false), QStringList({tag, tag + oneMore}));
        EXPECT_EQ(store.getTagCount(tag + oneMore), 1);
        store.replaceTag(path, tag, tag + oneMore);
        EXPECT_EQ(store.getTags(path), QStringList(tag + oneMore));
        store.deleteTagGlobally(tag + oneMore);
        EXPECT_EQ(store.listAllTags(), QStringList());
    }
}

TEST_F(TagTextsTest, aSearchTakesNoMoreThanSQLiteDoes)
{
    const QString longest = QString(49'999, u'x');
    store.addTag(QStringLiteral("/p/a.jpg"), longest + QStringLiteral("yz"));
    EXPECT_EQ(store.searchTags(longest, 5, false).size(), 1);
    EXPECT_EQ(store.searchTags(longest + u'y', 5, false), QStringList());
    EXPECT_EQ(store.searchTags(QString(16'667, u'山'), 5, true), QStringList());
}

TEST_F(TagTextsTest, composedAndDecomposedFormsAreTwoTags)
{
    const QString path = QStringLiteral("/p/a.jpg");
    const QString composed = QStringLiteral("caf\u00e9");
    const QString apart = QStringLiteral("cafe\u0301");
    store.addTag(path, composed);
    store.addTag(path, apart);
    EXPECT_EQ(store.getTags(path).size(), 2);
    store.removeTag(path, apart);
    EXPECT_EQ(store.getTags(path), QStringList(composed));
    EXPECT_EQ(store.fetchPathsByTag(apart), QStringList());
}

// Half a surrogate pair is no character, and UTF-8 has no bytes for it: "?" takes its place, in every
// operation alike, so what was added under such a text is found and removed under it.
TEST_F(TagTextsTest, halfOfACharacterBecomesAQuestionMarkEverywhere)
{
    const QString path = QStringLiteral("/p/a.jpg");
    const QString broken = QStringLiteral("half ") + QChar(0xd83d) + QStringLiteral(" a smile");
    const QString stored = QStringLiteral("half ? a smile");
    store.addTag(path, broken);
    EXPECT_EQ(store.getTags(path), QStringList(stored));
    EXPECT_EQ(store.getTagCount(broken), 1);
    EXPECT_EQ(store.fetchPathsByTag(broken), QStringList(path));
    EXPECT_EQ(store.searchTags(broken, 5, false), QStringList(stored));
    store.replaceTag(path, broken, QStringLiteral("whole"));
    EXPECT_EQ(store.listAllTags(), QStringList(QStringLiteral("whole")));
    store.addTag(path, broken);
    store.removeTag(path, broken);
    EXPECT_EQ(store.listAllTags(), QStringList(QStringLiteral("whole")));
}
