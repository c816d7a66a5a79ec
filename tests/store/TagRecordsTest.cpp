#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

using namespace Qorvane;

namespace {

class TagRecordsTest : public StoreFixture
{
protected:
    QStringList rows()
    {
        return RawDatabase(databasePath()).rows("SELECT * FROM image_tags ORDER BY path, tag");
    }

    StatementTrace trace;
    EmbeddingStore store;
    const QString path = QStringLiteral("/p/a.jpg");
    const QString cat = QStringLiteral("cat");
    const QString dog = QStringLiteral("dog");
};

} // namespace

TEST_F(TagRecordsTest, addingATagTwiceLeavesOneRow)
{
    store.addTag(path, cat);
    store.addTag(path, cat);
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|cat")}));
}

TEST_F(TagRecordsTest, blankTagsAreNotAdded)
{
    trace.clear();
    store.addTag(path, QStringLiteral("   "));
    store.addTag(path, QStringLiteral(" \t\r\n\u3000\u0085"));
    store.addTag(path, QString());
    EXPECT_EQ(trace.statements(), QStringList());
    EXPECT_EQ(rows(), QStringList());
}

TEST_F(TagRecordsTest, tagsAreStoredTrimmedAndPathsUnchanged)
{
    store.addTag(QStringLiteral(" /p/a.jpg "), QStringLiteral("\n big cat\t "));
    EXPECT_EQ(rows(), QStringList({QStringLiteral(" /p/a.jpg |big cat")}));
}

TEST_F(TagRecordsTest, zeroWidthSpacesAreTrimmedToo)
{
    store.addTag(path, QStringLiteral("\u200b"));
    EXPECT_EQ(rows(), QStringList());
    store.addTag(path, QStringLiteral("\u200bcat \u200b"));
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|cat")}));
    store.replaceTag(path, cat, QStringLiteral("\u200b"));
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|cat")}));
    store.replaceTag(path, cat, QStringLiteral(" \u200bdog\u200b"));
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|dog")}));
}

TEST_F(TagRecordsTest, caseTellsTagsApart)
{
    store.addTag(path, cat);
    store.addTag(path, QStringLiteral("Cat"));
    EXPECT_EQ(store.getTags(path).size(), 2);
    store.removeTag(path, QStringLiteral("CAT"));
    EXPECT_EQ(store.getTags(path).size(), 2);
    store.removeTag(path, QStringLiteral("Cat"));
    EXPECT_EQ(store.getTags(path), QStringList({cat}));
}

TEST_F(TagRecordsTest, removingAnAbsentTagSaysNothing)
{
    log.clear();
    store.removeTag(path, cat);
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(TagRecordsTest, replacingByAChangeOfCaseChangesNothing)
{
    store.addTag(path, cat);
    trace.clear();
    store.replaceTag(path, cat, QStringLiteral(" Cat "));
    EXPECT_EQ(trace.statements(), QStringList());
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|cat")}));
    store.addTag(path, QStringLiteral("\u00c9t\u00e9"));
    store.replaceTag(path, QStringLiteral("\u00c9t\u00e9"), QStringLiteral("e\u0301te\u0301"));
    EXPECT_TRUE(store.getTags(path).contains(QStringLiteral("\u00c9t\u00e9")));
}

TEST_F(TagRecordsTest, replacingByATagThePhotoHasLeavesOneRow)
{
    store.addTag(path, cat);
    store.addTag(path, dog);
    store.replaceTag(path, cat, dog);
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|dog")}));
}

TEST_F(TagRecordsTest, replacingAnAbsentTagAddsTheNewOne)
{
    store.replaceTag(path, cat, QStringLiteral(" dog\n"));
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|dog")}));
}

TEST_F(TagRecordsTest, replacingByABlankTagDoesNothing)
{
    store.addTag(path, cat);
    store.replaceTag(path, cat, QStringLiteral("  "));
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|cat")}));
}

TEST_F(TagRecordsTest, replacingTouchesOnePhotoOnly)
{
    store.addTag(path, cat);
    store.addTag(QStringLiteral("/p/b.jpg"), cat);
    store.replaceTag(path, cat, dog);
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|dog"), QStringLiteral("/p/b.jpg|cat")}));
}

TEST_F(TagRecordsTest, replacingIsADeletionAndAnInsertion)
{
    trace.clear();
    store.replaceTag(path, cat, dog);
    EXPECT_EQ(trace.statements(),
              QStringList({QStringLiteral("DELETE FROM image_tags WHERE path = ? AND tag = ?"),
                           QStringLiteral("INSERT OR IGNORE INTO image_tags(path, tag) VALUES(?, ?)")}));
}

TEST_F(TagRecordsTest, listsAreOrderedWithoutRegardToAsciiCase)
{
    for (const char *tag : {"banana", "Apple", "cherry", "Date", "山"}) {
        store.addTag(path, QString::fromUtf8(tag));
        store.addTag(QStringLiteral("/p/b.jpg"), QString::fromUtf8(tag));
    }
    const QStringList expected{QStringLiteral("Apple"), QStringLiteral("banana"), QStringLiteral("cherry"),
                               QStringLiteral("Date"), QStringLiteral("山")};
    EXPECT_EQ(store.listAllTags(), expected);
    EXPECT_EQ(store.getTags(path), expected);
    EXPECT_EQ(store.getTags(QStringLiteral("/p/none.jpg")), QStringList());
}

TEST_F(TagRecordsTest, pathsOfATagAreLoggedBeforeAndAfter)
{
    store.addTag(path, cat);
    store.addTag(QStringLiteral("/p/b.jpg"), cat);
    store.addTag(QStringLiteral("/p/c.jpg"), QStringLiteral("Cat"));
    log.clear();
    QStringList paths = store.fetchPathsByTag(cat);
    paths.sort();
    EXPECT_EQ(paths, QStringList({path, QStringLiteral("/p/b.jpg")}));
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("🏷️ EmbeddingStore: fetchPathsByTag called with tag: 'cat'"),
                           QStringLiteral(
                               "🏷️ EmbeddingStore: fetchPathsByTag returning 2 paths for tag 'cat'")}));
}

TEST_F(TagRecordsTest, deletingATagGloballyIsOneStatement)
{
    {
        RawDatabase raw(databasePath());
        raw.run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
                "INSERT INTO image_tags SELECT '/p/' || i, 'cat' FROM n");
        raw.run("INSERT INTO tag_vectors VALUES('cat', x'0000803f', 1, 0)");
    }
    store.addTag(path, dog);
    trace.clear();
    store.deleteTagGlobally(cat);
    EXPECT_EQ(trace.statements(), QStringList({QStringLiteral("DELETE FROM image_tags WHERE tag = ?")}));
    EXPECT_EQ(rows(), QStringList({QStringLiteral("/p/a.jpg|dog")}));
    EXPECT_EQ(store.getTagVectorCount(), 1);
}

TEST_F(TagRecordsTest, countsTheFilesOfATag)
{
    EXPECT_EQ(store.getTagCount(cat), 0);
    store.addTag(QStringLiteral("/p/a.jpg"), cat);
    store.addTag(QStringLiteral("/p/b.jpg"), cat);
    store.addTag(QStringLiteral("/p/b.jpg"), QStringLiteral("Cat"));
    EXPECT_EQ(store.getTagCount(cat), 2);
    EXPECT_EQ(store.getTagCount(QStringLiteral("c%")), 0);
}

TEST_F(TagRecordsTest, allCountsAtOnceAreThoseOfTheSingleOnes)
{
    EXPECT_TRUE(store.getAllTagCounts().isEmpty());
    RawDatabase(databasePath())
        .run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 500) "
             "INSERT OR IGNORE INTO image_tags SELECT '/p/' || (i * 7 % 50), 'tag' || (i * 13 % 31) FROM n");
    store.addTag(path, QStringLiteral("山"));
    store.addTag(path, QStringLiteral("Tag1"));
    trace.clear();
    const QHash<QString, int> counts = store.getAllTagCounts();
    EXPECT_EQ(trace.statements().size(), 1);
    const QStringList tags = store.listAllTags();
    EXPECT_EQ(tags.size(), 33);
    EXPECT_EQ(counts.size(), tags.size());
    for (const QString &tag : tags)
        EXPECT_EQ(counts.value(tag), store.getTagCount(tag)) << qPrintable(tag);
}

TEST_F(TagRecordsTest, failedPreparationsAreLoggedUnderTheOperationsName)
{
    changeSchema(store, "DROP TABLE image_tags");
    store.addTag(path, cat);
    store.removeTag(path, cat);
    store.replaceTag(path, cat, dog);
    store.deleteTagGlobally(cat);
    EXPECT_EQ(store.getTags(path), QStringList());
    EXPECT_EQ(store.listAllTags(), QStringList());
    EXPECT_EQ(store.searchTags(cat, 5, false), QStringList());
    EXPECT_EQ(store.getTagCount(cat), 0);
    EXPECT_TRUE(store.getAllTagCounts().isEmpty());
    EXPECT_EQ(store.fetchPathsByTag(cat), QStringList());
    const QString reason = QStringLiteral(" prepare error: no such table: image_tags");
    EXPECT_EQ(
        log.lines(),
        QStringList(
            {QStringLiteral("❌ addTag") + reason, QStringLiteral("❌ removeTag") + reason,
             QStringLiteral("❌ deleteTagGlobally") + reason, QStringLiteral("❌ getTags") + reason,
             QStringLiteral("❌ listAllTags") + reason, QStringLiteral("❌ searchTags") + reason,
             QStringLiteral("❌ getTagCount") + reason, QStringLiteral("❌ getAllTagCounts") + reason,
             QStringLiteral("🏷️ EmbeddingStore: fetchPathsByTag called with tag: 'cat'"),
             QStringLiteral("❌ fetchPathsByTag") + reason,
             QStringLiteral("🏷️ EmbeddingStore: fetchPathsByTag returning 0 paths for tag 'cat'")}));
}

TEST_F(TagRecordsTest, failedStepsAreLoggedButForReplacement)
{
    store.addTag(path, cat);
    changeSchema(store,
                 "CREATE TRIGGER t1 BEFORE DELETE ON image_tags BEGIN SELECT RAISE(ABORT, 'no'); END;"
                 "CREATE TRIGGER t2 BEFORE INSERT ON image_tags BEGIN SELECT RAISE(ABORT, 'no'); END;");
    store.addTag(path, dog);
    store.removeTag(path, cat);
    store.deleteTagGlobally(cat);
    store.replaceTag(path, cat, dog);
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ addTag step error: no"),
                                        QStringLiteral("❌ removeTag step error: no"),
                                        QStringLiteral("❌ deleteTagGlobally step error: no")}));
}
