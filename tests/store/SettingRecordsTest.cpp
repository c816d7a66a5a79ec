#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

using namespace Qorvane;

namespace {

class SettingRecordsTest : public StoreFixture
{
protected:
    EmbeddingStore store;
    const QString key = QStringLiteral("a 'key' %_");
};

} // namespace

TEST_F(SettingRecordsTest, aSettingIsThereUntilItIsDeleted)
{
    store.setSetting(key, QStringLiteral("一"));
    EXPECT_EQ(store.getSetting(key), QStringLiteral("一"));
    store.setSetting(key, QStringLiteral("two"));
    EXPECT_EQ(store.getSetting(key), QStringLiteral("two"));
    EXPECT_EQ(RawDatabase(databasePath()).rows("SELECT COUNT(*) FROM app_settings"), QStringList("1"));
    store.deleteSetting(key);
    EXPECT_EQ(store.getSetting(key), std::nullopt);
}

TEST_F(SettingRecordsTest, anEmptyValueIsOne)
{
    store.setSetting(key, QStringLiteral(""));
    EXPECT_EQ(store.getSetting(key), QString());
}

TEST_F(SettingRecordsTest, anUnknownKeyAndANullValueGiveNothing)
{
    EXPECT_EQ(store.getSetting(key), std::nullopt);
    RawDatabase(databasePath()).run("INSERT INTO app_settings VALUES('n', NULL)");
    EXPECT_EQ(store.getSetting(QStringLiteral("n")), std::nullopt);
    log.clear();
    store.deleteSetting(key);
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(SettingRecordsTest, settingsOutliveTheStore)
{
    store.setSetting(key, QStringLiteral("kept"));
    EmbeddingStore other;
    EXPECT_EQ(other.getSetting(key), QStringLiteral("kept"));
}

TEST_F(SettingRecordsTest, failedPreparationsAreLoggedUnderTheOperationsName)
{
    changeSchema(store, "DROP TABLE app_settings");
    store.setSetting(key, QStringLiteral("x"));
    EXPECT_EQ(store.getSetting(key), std::nullopt);
    store.deleteSetting(key);
    const QString reason = QStringLiteral(" prepare error: no such table: app_settings");
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ setSetting") + reason, QStringLiteral("❌ getSetting") + reason,
                           QStringLiteral("❌ deleteSetting") + reason}));
}

TEST_F(SettingRecordsTest, failedStepsAreLogged)
{
    store.setSetting(key, QStringLiteral("x"));
    changeSchema(store,
                 "CREATE TRIGGER t1 BEFORE DELETE ON app_settings BEGIN SELECT RAISE(ABORT, 'no'); END;"
                 "CREATE TRIGGER t2 BEFORE INSERT ON app_settings BEGIN SELECT RAISE(ABORT, 'no'); END;");
    store.setSetting(key, QStringLiteral("y"));
    store.deleteSetting(key);
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ setSetting step error: no"),
                                        QStringLiteral("❌ deleteSetting step error: no")}));
    EXPECT_EQ(store.getSetting(key), QStringLiteral("x"));
}
