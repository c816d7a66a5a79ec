#include "platform/LeavablePool.h"
#include "views/ContentViewFixture.h"

#include <atomic>
#include <semaphore>

using namespace Qorvane;

namespace {

/// Files that don't answer before this goes.
class DeadDrive
{
protected:
    DeadDrive() = default;
    ~DeadDrive()
    {
        EXPECT_GT(m_reads, 0);
        EXPECT_EQ(m_answers, 0);
        m_end.release(longestQueue);
        LeavablePool::waitUntilIdle();
        EXPECT_EQ(m_answers, m_reads);
    }
    DeadDrive(const DeadDrive &) = delete;
    DeadDrive &operator=(const DeadDrive &) = delete;

    QImage read()
    {
        ++m_reads;
        m_end.acquire();
        ++m_answers;
        return QImage(8, 8, QImage::Format_RGB32);
    }

    int reads() const { return m_reads; }

private:
    static constexpr int longestQueue = 100;

    std::atomic_int m_reads = 0;
    std::atomic_int m_answers = 0;
    std::counting_semaphore<longestQueue> m_end{0};
};

class HangingThumbnail
    // First: its files answer when window, engine and library are gone.
    : protected DeadDrive,
      public ContentViewFixture
{
protected:
    HangingThumbnail()
    {
        engine.addImageProvider(QString::fromLatin1(ThumbnailProvider::providerId),
                                std::make_unique<ThumbnailProvider>(thumbnails, [this](const QString &) {
                                    return read();
                                }).release());
    }
};

} // namespace

TEST_F(HangingThumbnail, doesNotHoldTheWindowThatCloses)
{
    constexpr int threads = 2;
    addFolder(QStringLiteral("Mounted"), 5);
    ASSERT_TRUE(waitUntil([this] { return reads() == threads; }));
    window->close();
    // What isn't closed by now goes with the fixture, and finds the files as silent as before.
}
