#include "library/FakeEncoder.h"
#include "library/LibraryHome.h"
#include "library/PipelineStage.h"
#include "platform/DetachedTask.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QFileInfo>
#include <QMap>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <semaphore>
#include <thread>

using namespace Qorvane;

namespace {

constexpr int threadCount = 2;
constexpr int tagsPerThread = 5000;
constexpr int pictureCount = 40;
// So many tags go by while the run works on one picture: the run lasts as long as the threads do.
constexpr int tagsPerPicture = threadCount * tagsPerThread / pictureCount;

using TagsByPath = QMap<QString, QSet<QString>>;

/// Two threads that change tags while a run writes rows. Ten thousand commits would wait for the disk most of
/// the time, so the database lies in memory where there is such a place.
class TagThreadsTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const QString memory = QStringLiteral("/dev/shm");
        if (!QFileInfo(memory).isWritable())
            return;
        s_folder = std::make_unique<QTemporaryDir>(memory + QStringLiteral("/qorvaneTagsXXXXXX"));
        if (s_folder->isValid())
            qputenv("XDG_DATA_HOME", s_folder->path().toLocal8Bit());
    }

    static void TearDownTestSuite() { s_folder.reset(); }

private:
    static inline std::unique_ptr<QTemporaryDir> s_folder;
};

/// One thread's work, and what has to be left of it.
class Tagger
{
public:
    Tagger(int number, QStringList paths, std::counting_semaphore<> &progress)
        : m_number(number)
        , m_paths(std::move(paths))
        , m_progress(progress)
    {
    }

    void work()
    {
        for (int i = 0; i < tagsPerThread; ++i) {
            const QString &path = m_paths[i % m_paths.size()];
            // Every fifth tag is one that the other thread adds to the same picture as well.
            const QString tag = i % 5 == 0 ? QStringLiteral("shared %1").arg(i)
                                           : QStringLiteral("%1 of %2").arg(i).arg(m_number);
            add(path, tag);
            if (i % 5 == 3)
                remove(path, tag);
            if (i % 5 == 4)
                replace(path, tag, tag + QStringLiteral(" renamed"));
            if (i % 50 == 0)
                look(path, tag);
            if ((i + 1) % (tagsPerPicture / threadCount) == 0)
                m_progress.release();
        }
    }

    const TagsByPath &expected() const { return m_expected; }
    int surprises() const { return m_surprises; }

private:
    void add(const QString &path, const QString &tag)
    {
        m_store.addTag(path, tag);
        m_expected[path].insert(tag);
    }

    void remove(const QString &path, const QString &tag)
    {
        m_store.removeTag(path, tag);
        m_expected[path].remove(tag);
    }

    void replace(const QString &path, const QString &oldTag, const QString &newTag)
    {
        m_store.replaceTag(path, oldTag, newTag);
        m_expected[path].remove(oldTag);
        m_expected[path].insert(newTag);
    }

    // Whatever the other thread does, what this one wrote is there.
    void look(const QString &path, const QString &tag)
    {
        const QStringList here = m_store.getTags(path);
        const QSet<QString> tags(here.begin(), here.end());
        m_surprises += tags.contains(m_expected[path]) ? 0 : 1;
        m_surprises += m_store.listAllTags().contains(tag) ? 0 : 1;
        m_surprises += m_store.fetchPathsByTag(tag).contains(path) ? 0 : 1;
        m_surprises += m_store.getTagCount(tag) == 1 ? 0 : 1;
        m_surprises += m_store.getAllTagCounts().value(tag) == 1 ? 0 : 1;
        m_surprises += m_store.searchTags(tag, 5, true).contains(tag) ? 0 : 1;
    }

    const int m_number;
    const QStringList m_paths;
    std::counting_semaphore<> &m_progress;
    EmbeddingStore &m_store = EmbeddingStore::shared();
    TagsByPath m_expected;
    int m_surprises = 0;
};

QSet<QString> asSet(const QStringList &texts)
{
    return {texts.begin(), texts.end()};
}

} // namespace

TEST_F(TagThreadsTest, tagsChangedByTwoThreadsDuringARunAreAllThereAndTheRunsRowsToo)
{
    const LibraryHome home;
    EmbeddingStore &store = EmbeddingStore::shared();
    QList<FileUrl> pictures;
    QStringList paths;
    for (int i = 0; i < pictureCount; ++i) {
        pictures.append(home.writePicture(QStringLiteral("%1.png").arg(i), QColor(i, 2 * i, 3 * i)));
        paths.append(pictures.last().path());
    }

    std::counting_semaphore<> progress(0);
    std::array<Tagger, threadCount> taggers{Tagger(1, paths, progress), Tagger(2, paths, progress)};
    std::atomic_int running = 0;
    std::vector<std::thread> threads;
    FakeEncoder encoder;
    int rowsMeanwhile = 0;
    encoder.onRequest = [&](const QString &) {
        if (threads.empty()) {
            running = threadCount;
            for (Tagger &tagger : taggers) {
                threads.emplace_back([&tagger, &running] {
                    tagger.work();
                    --running;
                });
            }
        }
        // A picture for so many tags; a thread that hangs isn't waited for.
        for (int thread = 0; thread < threadCount; ++thread)
            static_cast<void>(progress.try_acquire_for(std::chrono::seconds(5)));
        rowsMeanwhile += running > 0 ? 1 : 0;
    };
    PipelineStage stage({home.folder()});
    stage.pipeline.startProcessing(pictures, home.path());

    const std::chrono::seconds patience(240); // under a sanitizer on a busy machine; here it takes seconds
    if (!waitUntil([&] { return threads.size() == threadCount && running == 0; }, patience) ||
        !waitUntil(
            [&] {
                return stage.state.folderProcessingStatus().value(home.path()) ==
                       FolderProcessingState::completed;
            },
            patience))
        qFatal("the threads or the run hang");
    for (std::thread &thread : threads)
        thread.join();
    DetachedTask::waitUntilIdle();

    EXPECT_GE(rowsMeanwhile, pictureCount / 2); // or nothing was tried
    TagsByPath expected;
    QSet<QString> allTags;
    for (const Tagger &tagger : taggers) {
        EXPECT_EQ(tagger.surprises(), 0);
        for (auto entry = tagger.expected().begin(); entry != tagger.expected().end(); ++entry) {
            expected[entry.key()] += entry.value();
            allTags += entry.value();
        }
    }
    EXPECT_EQ(asSet(store.listAllTags()), allTags);
    for (int i = 0; i < pictureCount; ++i) {
        EXPECT_EQ(asSet(store.getTags(paths[i])), expected[paths[i]]);
        const std::vector<ImageVectorRow> rows = store.fetch({paths[i]});
        ASSERT_EQ(rows.size(), 1U);
        const QColor color(i, 2 * i, 3 * i);
        ASSERT_EQ(rows.front().vector.size(), 3U);
        EXPECT_NEAR(rows.front().vector[2], color.blueF(), 0.02);
    }
    EXPECT_EQ(store.getImageCount(), pictureCount);
    // Four fifths of each thread's own, less those removed, and the shared ones once.
    EXPECT_EQ(allTags.size(), threadCount * tagsPerThread * 3 / 5 + tagsPerThread / 5);
}
