#include "store/TagSuggestions.h"

#include "platform/Languages.h"
#include "platform/PredefinedTags.h"
#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

#include <algorithm>
#include <random>
#include <set>

using namespace Qorvane;

namespace {

class TagSuggestionsTest : public StoreFixture
{
protected:
    TagSuggestionsTest() { Languages::overrideForTests({QStringLiteral("en-GB")}, QStringLiteral("en")); }

    void addTags(const QStringList &tags)
    {
        for (const QString &tag : tags)
            store.addTag(QStringLiteral("/p/%1.jpg").arg(++m_photos), tag);
    }

    EmbeddingStore store;

private:
    int m_photos = 0;
};

QString asciiLower(QString text)
{
    for (QChar &unit : text) {
        if (unit >= u'A' && unit <= u'Z')
            unit = QChar(unit.unicode() + 32);
    }
    return text;
}

// SQL's LIKE, tried place by place.
bool isLike(QStringView text, QStringView pattern)
{
    if (pattern.isEmpty())
        return text.isEmpty();
    if (pattern.front() == u'%')
        return isLike(text, pattern.mid(1)) || (!text.isEmpty() && isLike(text.mid(1), pattern));
    if (text.isEmpty() || (pattern.front() != u'_' && pattern.front() != text.front()))
        return false;
    return isLike(text.mid(1), pattern.mid(1));
}

// What the suggestions have to be, worked out without a database: all candidates in turns, then each text
// once.
QStringList expectedSuggestions(const std::set<QString> &tags, const QString &prefix, int limit)
{
    std::vector<QString> stored;
    std::copy_if(tags.begin(), tags.end(), std::back_inserter(stored),
                 [&](const QString &tag) { return isLike(asciiLower(tag), asciiLower(prefix) + u'%'); });
    std::sort(stored.begin(), stored.end(), [](const QString &left, const QString &right) {
        return asciiLower(left).toUtf8() < asciiLower(right).toUtf8();
    });
    stored.resize(std::min(stored.size(), size_t(std::max(limit * 3, 20))));
    std::vector<QString> predefined;
    for (const QString &tag : predefinedTagsEnglish()) {
        if (tag.left(prefix.size()).toLower() == prefix.toLower())
            predefined.push_back(tag);
    }
    std::vector<QString> inTurns;
    for (size_t index = 0; index < stored.size() + predefined.size(); ++index) {
        if (index < stored.size())
            inTurns.push_back(stored[index]);
        if (index < predefined.size())
            inTurns.push_back(predefined[index]);
    }
    QStringList expected;
    for (const QString &tag : inTurns) {
        if (expected.size() < limit && !expected.contains(tag, Qt::CaseInsensitive))
            expected.append(tag);
    }
    return expected;
}

} // namespace

TEST(TagSuggestions, takeTurns)
{
    EXPECT_EQ(interleavedTags({"a1", "a2"}, {"b1", "b2", "b3"}, 10),
              QStringList({"a1", "b1", "a2", "b2", "b3"}));
    EXPECT_EQ(interleavedTags({"a1", "a2"}, {"b1", "b2"}, 3), QStringList({"a1", "b1", "a2"}));
    EXPECT_EQ(interleavedTags({"a"}, {"b"}, 0), QStringList());
    EXPECT_EQ(interleavedTags({"a"}, {"b"}, -1), QStringList());
}

TEST(TagSuggestions, showOneOfThoseThatDifferInCaseOnly)
{
    EXPECT_EQ(interleavedTags({"cat", "CAT", "Éclair"}, {"Cat", "éclair", "Cow"}, 10),
              QStringList({"cat", "éclair", "Cow"}));
}

TEST_F(TagSuggestionsTest, findTagsByTheirBeginningWithoutRegardToCase)
{
    addTags({"cat", "CATALOG", "dog", "concat"});
    EXPECT_EQ(store.searchTags(QStringLiteral("Cat"), 5, false), QStringList({"cat", "CATALOG"}));
    EXPECT_EQ(store.searchTags(QStringLiteral("  cat\n"), 1, false), QStringList({"cat"}));
}

TEST_F(TagSuggestionsTest, ofNothingAreNone)
{
    addTags({"cat"});
    EXPECT_EQ(store.searchTags({}, 5, true), QStringList());
    EXPECT_EQ(store.searchTags(QStringLiteral(" \t\n"), 5, true), QStringList());
}

TEST_F(TagSuggestionsTest, takeWildcardsAsSuch)
{
    addTags({"sun", "sunset", "moonset"});
    EXPECT_EQ(store.searchTags(QStringLiteral("%set"), 5, false), QStringList({"moonset", "sunset"}));
    EXPECT_EQ(store.searchTags(QStringLiteral("s_n"), 5, false), QStringList({"sun", "sunset"}));
}

TEST_F(TagSuggestionsTest, joinThePredefinedTagsOfTheLanguage)
{
    addTags({"portfolio"});
    EXPECT_EQ(store.searchTags(QStringLiteral("port"), 5, true), QStringList({"portfolio", "Portrait"}));
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    EXPECT_EQ(store.searchTags(QStringLiteral("port"), 5, true), QStringList({"portfolio"}));
    EXPECT_EQ(store.searchTags(QStringLiteral("人像"), 5, true), QStringList({"人像"}));
}

TEST_F(TagSuggestionsTest, showTheTablesFormOfAPredefinedTag)
{
    addTags({"portrait"});
    EXPECT_EQ(store.searchTags(QStringLiteral("portr"), 5, true), QStringList({"portrait"}));
}

TEST_F(TagSuggestionsTest, readTwentyRowsOrThreeTimesTheLimit)
{
    const std::vector<std::pair<int, int>> rowsByLimit{{2, 20}, {5, 20}, {6, 20}, {7, 21}, {10, 30}};
    for (const auto &[limit, rows] : rowsByLimit) {
        SCOPED_TRACE(limit);
        // Rows that count as one tag, then one in the last row that is read, and one in the next.
        const QChar begin(u'a' + limit);
        QStringList tags;
        for (int number = 0; number < rows - 1; ++number) {
            QString tag = begin + QStringLiteral("aaaaa");
            for (int place = 1; place < tag.size(); ++place) {
                if (number >> (place - 1) & 1)
                    tag[place] = u'A';
            }
            tags.append(tag);
        }
        const QString last = begin + QStringLiteral("b");
        addTags(tags + QStringList({last, begin + QStringLiteral("c")}));
        const QStringList found = store.searchTags(begin, limit, false);
        ASSERT_EQ(found.size(), 2);
        EXPECT_EQ(found[0].toLower(), begin + QStringLiteral("aaaaa"));
        EXPECT_EQ(found[1], last);
    }
}

TEST_F(TagSuggestionsTest, areThoseOfAnIndependentReckoning)
{
    std::mt19937 random(17);
    const QStringList pieces{"p", "P", "o", "r", "t", "%", "_", "é", "É", "湖", "泊", " ", "'", "\""};
    const auto randomText = [&](int mostPieces) {
        QString text;
        for (int count = 1 + int(random() % unsigned(mostPieces)); count > 0; --count)
            text += pieces[qsizetype(random() % unsigned(pieces.size()))];
        return text.trimmed();
    };
    // Thousands of tags are written by the test itself, which needn't wait for the disk.
    RawDatabase database(databasePath());
    database.run("PRAGMA synchronous = OFF");
    int found = 0;
    for (int round = 0; round < 1000; ++round) {
        // The order of two that SQLite takes for equal is open, so no two are.
        std::set<QString> tags;
        std::set<QString> folded;
        for (int number = int(random() % 30); number > 0; --number) {
            const QString tag = randomText(5);
            if (!tag.isEmpty() && folded.insert(asciiLower(tag)).second)
                tags.insert(tag);
        }
        QByteArray sql = "BEGIN; DELETE FROM image_tags;";
        for (const QString &tag : tags)
            sql += "INSERT INTO image_tags VALUES('/p/a.jpg', '" +
                   QString(tag).replace(u'\'', QStringLiteral("''")).toUtf8() + "');";
        database.run(sql + "COMMIT;");
        const QString prefix = randomText(3);
        if (prefix.isEmpty())
            continue;
        const int limit = 1 + int(random() % 12);
        const QStringList expected = expectedSuggestions(tags, prefix, limit);
        ASSERT_EQ(store.searchTags(prefix, limit, true), expected) << qPrintable(prefix) << ' ' << limit;
        found += int(expected.size());
    }
    EXPECT_GT(found, 1000); // or nothing was tried
}
