#include "support/DeadDrive.h"
#include "views/ContentViewFixture.h"
#include "views/pictures/ThumbnailUrl.h"

using namespace Qorvane;

namespace {

/// Files that don't answer before this goes.
class SilentFiles
{
protected:
    SilentFiles() = default;
    ~SilentFiles()
    {
        EXPECT_GT(drive.reads(), 0);
        EXPECT_EQ(drive.answers(), 0);
        drive.comeBack();
        EXPECT_EQ(drive.answers(), drive.reads());
    }
    SilentFiles(const SilentFiles &) = delete;
    SilentFiles &operator=(const SilentFiles &) = delete;

    DeadDrive drive;
};

class HangingThumbnail
    // First: its files answer when window, engine and library are gone.
    : protected SilentFiles,
      public ContentViewFixture
{
protected:
    HangingThumbnail()
    {
        engine.addImageProvider(
            QString::fromLatin1(ThumbnailRequest::providerId),
            std::make_unique<ThumbnailProvider>(thumbnails, [read = drive.reading()](const QString &) {
                read();
                return QImage(8, 8, QImage::Format_RGB32);
            }).release());
    }
};

} // namespace

TEST_F(HangingThumbnail, doesNotHoldTheWindowThatCloses)
{
    constexpr int threads = 2;
    addFolder(QStringLiteral("Mounted"), 5);
    ASSERT_TRUE(waitUntil([this] { return drive.reads() == threads; }));
    window->close();
    // What isn't closed by now goes with the fixture, and finds the files as silent as before.
}
