#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

#include <array>
#include <atomic>
#include <thread>

using namespace Qorvane;

namespace {

class StoreThreadsTest : public StoreFixture
{
};

} // namespace

TEST_F(StoreThreadsTest, writersAndReadersFromManyThreadsLoseNothing)
{
    constexpr int threads = 4;
    constexpr int rows = 25;
    EmbeddingStore store;
    std::atomic_int torn = 0;
    std::vector<std::thread> running;
    for (int t = 0; t < threads; ++t) {
        running.emplace_back([&store, &torn, t] {
            for (int i = 0; i < rows; ++i) {
                const QString path = QStringLiteral("/%1/%2.jpg").arg(t).arg(i);
                const std::vector<float> vector(64, float(t * rows + i));
                store.upsert(path, std::nullopt, vector, 64, i);
                store.setRating(path, 1 + i % 5);
                if (!store.isUpToDate(path, i))
                    ++torn;
                store.scanVectors({}, [&torn](const ImageVectorView &view) {
                    const ImageVectorRow row = view.copy();
                    for (const float value : row.vector) {
                        if (value != row.vector.front())
                            ++torn;
                    }
                });
            }
        });
    }
    for (std::thread &thread : running)
        thread.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(store.getImageCount(), threads * rows);
    EXPECT_EQ(store.fetchPathsByRating(1).size(), threads * rows / 5);
}

TEST_F(StoreThreadsTest, recoveryIsSeenWholeByOtherThreads)
{
    EmbeddingStore store;
    std::atomic_bool isEnding = false;
    std::thread reader([&] {
        while (!isEnding) {
            store.getImageCount();
            store.getTags(QStringLiteral("/p/a.jpg"));
        }
    });
    for (int i = 0; i < 3; ++i) {
        changeSchema(store,
                     "CREATE TRIGGER IF NOT EXISTS t BEFORE INSERT ON images BEGIN SELECT RAISE(ABORT, "
                     "'malformed'); END;");
        store.upsert(QStringLiteral("/p/a.jpg"), std::nullopt, {1.0F}, 1, 1);
    }
    isEnding = true;
    reader.join();
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌ getImageCount")), QStringList());
    EXPECT_EQ(openDescriptors(databasePath()), 1);
    EXPECT_EQ(openDescriptors(backupPath()), 0);
}

TEST_F(StoreThreadsTest, sharedIsMadeOnceWhoeverComesFirst)
{
    std::vector<std::thread> running;
    std::array<EmbeddingStore *, 4> seen{};
    for (std::size_t t = 0; t < seen.size(); ++t)
        running.emplace_back([&seen, t] { seen[t] = &EmbeddingStore::shared(); });
    for (std::thread &thread : running)
        thread.join();
    for (const EmbeddingStore *one : seen)
        EXPECT_EQ(one, seen.front());
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("🗄️ SQLite 数据库路径: ")).size(), 1);
}
