#include "headless/IndexSession.h"

#include "headless/IndexSummary.h"
#include "headless/LibraryOpening.h"
#include "library/QorManage.h"
#include "media/EmbeddingMessages.h"
#include "platform/NotificationCenter.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QDir>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qorvane;

namespace {

/// Answers every request with one and the same vector, as a main window with encoders would.
class Answerer
{
public:
    Answerer()
        : m_token(NotificationCenter::defaultCenter().addObserver(
              EmbeddingMessages::requestName, ObserverQueue::posting, [](const Notification &request) {
                  const EmbeddingMessages::EmbeddingVector vector{0.6F, 0.8F};
                  NotificationCenter::defaultCenter().post(
                      EmbeddingMessages::responseName,
                      {{EmbeddingMessages::idKey, request.userInfo.value(EmbeddingMessages::idKey)},
                       {EmbeddingMessages::vectorKey, QVariant::fromValue(vector)}});
              }))
    {
    }
    ~Answerer() { NotificationCenter::defaultCenter().removeObserver(m_token); }
    Answerer(const Answerer &) = delete;
    Answerer &operator=(const Answerer &) = delete;

private:
    NotificationCenter::Token m_token;
};

class IndexSessionTest : public testing::Test
{
protected:
    /// A folder of `count` pictures of its own.
    FileUrl makeFolder(const QString &name, int count)
    {
        const QString path = m_place.filePath(name);
        QDir().mkpath(path);
        QImage picture(40, 30, QImage::Format_RGB32);
        for (int index = 0; index < count; ++index) {
            picture.fill(QColor::fromHsv(index * 37 % 360, 200, 200));
            EXPECT_TRUE(picture.save(path + QStringLiteral("/%1.png").arg(index)));
        }
        return FileUrl::directory(path);
    }

    /// Indexes `folders` with a library of its own, as a run of the program would; whether it ended in time.
    bool index(const QList<FileUrl> &folders)
    {
        const Answerer answerer;
        QorManage library;
        bool isOpen = false;
        whenLibraryIsOpen(library, &library, [&isOpen] { isOpen = true; });
        if (!waitUntil([&isOpen] { return isOpen; }))
            return false;
        IndexSession session(library);
        QSignalSpy finished(&session, &IndexSession::finished);
        QObject::connect(&session, &IndexSession::progressChanged, &session,
                         [&] { m_fractions.append(session.fraction()); });
        session.start(folders);
        const bool ended = waitUntil([&finished] { return !finished.isEmpty(); });
        m_lastState = session.state();
        return ended;
    }

    QTemporaryDir m_place;
    QList<double> m_fractions;
    FolderProcessingState m_lastState = FolderProcessingState::idle;
};

} // namespace

TEST_F(IndexSessionTest, IndexesFoldersToTheEnd)
{
    const QList<FileUrl> folders{makeFolder(QStringLiteral("a"), 3), makeFolder(QStringLiteral("b"), 2)};
    EXPECT_EQ(IndexSummary::of(folders), (IndexSummary{5, 0, 0}));
    ASSERT_TRUE(index(folders));
    EXPECT_EQ(IndexSummary::of(folders), (IndexSummary{5, 5, 5}));
    EXPECT_EQ(m_lastState, FolderProcessingState::completed);
    ASSERT_FALSE(m_fractions.isEmpty());
    EXPECT_EQ(m_fractions.last(), 1.0);
    // A stage never shows as done before it has begun.
    const auto firstWhole = std::find(m_fractions.begin(), m_fractions.end(), 1.0);
    EXPECT_TRUE(std::all_of(firstWhole, m_fractions.end(), [](double fraction) { return fraction == 1.0; }));
    EXPECT_TRUE(storedLibraryFolders().contains(folders.at(0)));
    EXPECT_TRUE(storedLibraryFolders().contains(folders.at(1)));
}

TEST_F(IndexSessionTest, EndsForAFolderWithoutMedia)
{
    const FileUrl folder = makeFolder(QStringLiteral("empty"), 0);
    EXPECT_TRUE(index({folder}));
    EXPECT_EQ(IndexSummary::of({folder}), IndexSummary{});
}

TEST_F(IndexSessionTest, IndexesWhatIsNewInAFolderOfAnEarlierRun)
{
    const FileUrl folder = makeFolder(QStringLiteral("again"), 2);
    ASSERT_TRUE(index({folder}));
    makeFolder(QStringLiteral("again"), 4);
    ASSERT_TRUE(index({folder}));
    EXPECT_EQ(IndexSummary::of({folder}), (IndexSummary{4, 4, 4}));
}

TEST_F(IndexSessionTest, KeepsTheFoldersOfEarlierRuns)
{
    const FileUrl first = makeFolder(QStringLiteral("first"), 1);
    const FileUrl second = makeFolder(QStringLiteral("second"), 1);
    ASSERT_TRUE(index({first}));
    ASSERT_TRUE(index({second}));
    EXPECT_TRUE(storedLibraryFolders().contains(first));
    EXPECT_TRUE(storedLibraryFolders().contains(second));
}

TEST_F(IndexSessionTest, CountsAFileOnceThoughItsFolderIsNamedTwice)
{
    const FileUrl outer = makeFolder(QStringLiteral("outer"), 1);
    const FileUrl inner = makeFolder(QStringLiteral("outer/inner"), 2);
    EXPECT_EQ(IndexSummary::of({outer, inner}).files, 3);
}

TEST(IndexReportTest, CountsWhatIsNewAndHowFast)
{
    EXPECT_EQ(
        indexReport({27, 24, 20}, {30, 30, 29}, 1.5),
        QStringLiteral("30 files, 30 thumbnails (6 new), 29 vectors (9 new) in 1.5 s: 20.0 files a second"));
    EXPECT_TRUE(indexReport({}, {}, 0).endsWith(QStringLiteral("0.0 s: - files a second")));
}
