#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

#include <QDateTime>

using namespace Qorvane;

namespace {

class TagVectorRecordsTest : public StoreFixture
{
protected:
    QStringList storedTags()
    {
        return RawDatabase(databasePath()).rows("SELECT tag FROM tag_vectors ORDER BY tag");
    }

    EmbeddingStore store;
    const QString cat = QStringLiteral("Cat");
    const QString lake = QStringLiteral("湖泊 '%_\"");
};

} // namespace

TEST_F(TagVectorRecordsTest, aVectorComesBackToTheBit)
{
    const std::vector<float> vector = someVector(1001, 3);
    store.storeTagVector(lake, vector);
    EXPECT_EQ(store.loadTagVector(lake), vector);
    EXPECT_EQ(store.getTagVectorCount(), 1);
}

TEST_F(TagVectorRecordsTest, theRowHoldsRawFloatsAndSecondsSince2001)
{
    const double start =
        double(QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch()) / 1000;
    const double before = double(QDateTime::currentMSecsSinceEpoch()) / 1000 - start;
    store.storeTagVector(cat, {1.0f, -2.0f});
    const double after = double(QDateTime::currentMSecsSinceEpoch()) / 1000 - start;
    RawDatabase database(databasePath());
    EXPECT_EQ(database.rows("SELECT tag, hex(vector), dim FROM tag_vectors"),
              QStringList(QStringLiteral("Cat|0000803F000000C0|2")));
    const double created = database.rows("SELECT created_time FROM tag_vectors").constFirst().toDouble();
    EXPECT_GE(created, before - 0.001);
    EXPECT_LE(created, after + 0.001);
}

TEST_F(TagVectorRecordsTest, aSecondVectorTakesTheFirstOnesPlace)
{
    store.storeTagVector(cat, {1.0f, 2.0f});
    store.storeTagVector(cat, {3.0f});
    EXPECT_EQ(store.loadTagVector(cat), std::vector<float>{3.0f});
    EXPECT_EQ(storedTags(), QStringList(cat));
}

TEST_F(TagVectorRecordsTest, anEmptyVectorChangesNothing)
{
    store.storeTagVector(cat, {});
    EXPECT_EQ(store.getTagVectorCount(), 0);
    store.storeTagVector(cat, {1.0f});
    store.storeTagVector(cat, {});
    EXPECT_EQ(store.loadTagVector(cat), std::vector<float>{1.0f});
}

TEST_F(TagVectorRecordsTest, anUnknownTagHasNone)
{
    store.storeTagVector(cat, {1.0f});
    EXPECT_EQ(store.loadTagVector(QStringLiteral("cat")), std::nullopt);
}

TEST_F(TagVectorRecordsTest, allVectorsByTag)
{
    EXPECT_TRUE(store.loadAllTagVectors().empty());
    store.storeTagVector(cat, {1.0f});
    store.storeTagVector(lake, {2.0f, 3.0f});
    EXPECT_EQ(store.loadAllTagVectors(), (TagVectors{{cat, {1.0f}}, {lake, {2.0f, 3.0f}}}));
}

TEST_F(TagVectorRecordsTest, rowsWithoutAVectorArePassedOver)
{
    RawDatabase(databasePath())
        .run("INSERT INTO tag_vectors VALUES('none', x'', 1, 0);"
             "INSERT INTO tag_vectors VALUES('zero', x'0000803F', 0, 0);"
             "INSERT INTO tag_vectors VALUES('short', x'0000803F', 2, 0);"
             "INSERT INTO tag_vectors VALUES(NULL, x'0000803F', 1, 0);"
             "INSERT INTO tag_vectors VALUES('good', x'0000803F', 1, 0)");
    for (const char *tag : {"none", "zero", "short"})
        EXPECT_EQ(store.loadTagVector(QString::fromLatin1(tag)), std::nullopt) << tag;
    EXPECT_EQ(store.loadAllTagVectors(), (TagVectors{{QStringLiteral("good"), {1.0f}}}));
}

TEST_F(TagVectorRecordsTest, cleaningUpKeepsTheValidTagsToTheLetter)
{
    for (const char *tag : {"cat", "Cat", "dog"})
        store.storeTagVector(QString::fromLatin1(tag), {1.0f});
    log.clear();
    store.cleanupObsoleteTagVectors({QStringLiteral("cat"), QStringLiteral("bird")});
    EXPECT_EQ(storedTags(), QStringList(QStringLiteral("cat")));
    QStringList lines = log.lines();
    lines.sort();
    EXPECT_EQ(lines, QStringList({QStringLiteral("🗑️ 删除过时标签向量: 'Cat'"),
                                  QStringLiteral("🗑️ 删除过时标签向量: 'dog'")}));
}

TEST_F(TagVectorRecordsTest, anEmptySetCleansUpEverything)
{
    for (int number = 0; number < 100; ++number)
        store.storeTagVector(QString::number(number), {1.0f});
    store.cleanupObsoleteTagVectors({});
    EXPECT_EQ(store.getTagVectorCount(), 0);
}

TEST_F(TagVectorRecordsTest, aDeletionThatFailsIsNotSaid)
{
    for (const char *tag : {"a", "b"})
        store.storeTagVector(QString::fromLatin1(tag), {1.0f});
    changeSchema(store, "CREATE TRIGGER t BEFORE DELETE ON tag_vectors WHEN OLD.tag = 'a' "
                        "BEGIN SELECT RAISE(ABORT, 'no'); END");
    store.cleanupObsoleteTagVectors({});
    EXPECT_EQ(log.lines(), QStringList(QStringLiteral("🗑️ 删除过时标签向量: 'b'")));
    EXPECT_EQ(storedTags(), QStringList(QStringLiteral("a")));
}

TEST_F(TagVectorRecordsTest, failedPreparationsAreLoggedUnderTheOperationsName)
{
    changeSchema(store, "DROP TABLE tag_vectors");
    store.storeTagVector(cat, {1.0f});
    EXPECT_EQ(store.loadTagVector(cat), std::nullopt);
    EXPECT_TRUE(store.loadAllTagVectors().empty());
    store.cleanupObsoleteTagVectors({});
    const QString reason = QStringLiteral(" error: no such table: tag_vectors");
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ storeTagVector prepare") + reason,
                                        QStringLiteral("❌ loadTagVector prepare") + reason,
                                        QStringLiteral("❌ loadAllTagVectors prepare") + reason,
                                        QStringLiteral("❌ cleanupObsoleteTagVectors select") + reason}));
}

TEST_F(TagVectorRecordsTest, aFailedStepIsLogged)
{
    changeSchema(store,
                 "CREATE TRIGGER t BEFORE INSERT ON tag_vectors BEGIN SELECT RAISE(ABORT, 'no'); END;");
    store.storeTagVector(cat, {1.0f});
    EXPECT_EQ(log.lines(), QStringList(QStringLiteral("❌ storeTagVector step error: no")));
}
