#include "media/ThumbnailCache.h"

#include "media/OffMainThread.h"
#include "media/TestVideo.h"
#include "media/ThumbnailPaths.h"
#include "platform/QualityOfService.h"
#include "support/LogCapture.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <thread>
#include <utility>
#include <vector>

using namespace Qorvane;

namespace {

/// Threads that decode one picture again and again, as long as this lives.
class BusyDecoders
{
public:
    BusyDecoders(const FileUrl &picture, QualityOfService quality)
    {
        // More than there are places, so that one that gets free is taken again at once.
        for (int i = 0; i < 3 * std::max(1, QThread::idealThreadCount()); ++i) {
            m_threads.emplace_back([this, picture, quality] {
                applyToCurrentThread(quality);
                while (!m_isOver) {
                    ThumbnailCache::makeThumbnail(picture);
                    ++m_count;
                    m_count.notify_all();
                }
            });
        }
    }
    ~BusyDecoders()
    {
        m_isOver = true;
        for (std::thread &thread : m_threads)
            thread.join();
    }
    BusyDecoders(const BusyDecoders &) = delete;
    BusyDecoders &operator=(const BusyDecoders &) = delete;

    /// How many decodes have ended.
    int count() const { return m_count; }
    /// Until the next one ends.
    void awaitDecode() const { m_count.wait(m_count); }

private:
    std::atomic_bool m_isOver = false;
    std::atomic_int m_count = 0;
    std::vector<std::thread> m_threads;
};

class ThumbnailCacheTest : public testing::Test
{
protected:
    void SetUp() override { QDir(base()).removeRecursively(); }

    static QString base() { return thumbnailCacheDirectory()->path(); }

    FileUrl fileNamed(const char *name) const
    {
        return FileUrl::file(m_folder.filePath(QString::fromUtf8(name)));
    }

    FileUrl written(const char *name, const QByteArray &bytes) const
    {
        const FileUrl url = fileNamed(name);
        write(url, bytes);
        return url;
    }

    FileUrl writtenVideo(const char *name, const TestVideo &video) const
    {
        const FileUrl url = fileNamed(name);
        writeTestVideo(url.path(), video);
        return url;
    }

    static void write(const FileUrl &url, const QByteArray &bytes)
    {
        QDir().mkpath(url.deletingLastPathComponent().path());
        QFile file(url.path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    static QByteArray bytesOf(const FileUrl &url)
    {
        QFile file(url.path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static std::optional<Image> thumbnailOf(const FileUrl &url)
    {
        return offMainThread([&] { return ThumbnailCache::getThumbnail(url); });
    }

    static QByteArray jpegOf(const QImage &image)
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        EXPECT_TRUE(image.save(&buffer, "JPEG", 95));
        return buffer.data();
    }

    /// The JPEG with an Exif block right after its start: one big-endian directory with the orientation
    /// alone.
    static QByteArray withOrientation(const QByteArray &jpeg, char orientation)
    {
        const char block[] = {
            '\xff', '\xe1', 0, 34,          'E', 'x', 'i', 'f', 0, 0,  // marker, length, signature
            'M',    'M',    0, 42,          0,   0,   0,   8,          // header: first directory at 8
            0,      1,      1, 18,          0,   3,   0,   0,          // one entry: tag 0x0112, SHORT
            0,      1,      0, orientation, 0,   0,   0,   0,   0, 0}; // count 1, value, no next directory
        return jpeg.left(2) + QByteArray(block, sizeof block) + jpeg.mid(2);
    }

    QTemporaryDir m_folder;
};

bool isNear(QColor one, QColor other)
{
    return std::abs(one.red() - other.red()) <= 12 && std::abs(one.green() - other.green()) <= 12 &&
           std::abs(one.blue() - other.blue()) <= 12;
}

TestVideo redVideo()
{
    TestVideo video;
    video.picture = [size = video.size](int) { return plainPicture(size, Qt::red); };
    return video;
}

} // namespace

TEST_F(ThumbnailCacheTest, makesAndStoresTheThumbnailOfAPicture)
{
    const FileUrl file = written("照片.jpg", jpegOf(quarteredPicture({1600, 1000})));
    const std::optional<Image> thumbnail = thumbnailOf(file);
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(thumbnail->size(), QSize(800, 500));
    EXPECT_TRUE(isNear(thumbnail->pixels().pixelColor(200, 125), Qt::red));
    EXPECT_TRUE(isNear(thumbnail->pixels().pixelColor(600, 125), Qt::green));

    const FileUrl cached = *thumbnailURL(file);
    EXPECT_EQ(QImage(cached.path()), thumbnail->pixels()) << "the result is the stored file, read again";
    EXPECT_EQ(QDir(cached.deletingLastPathComponent().path()).entryList(QDir::Files | QDir::Hidden),
              QStringList(cached.lastPathComponent()));
}

TEST_F(ThumbnailCacheTest, doesNotEnlargeASmallPicture)
{
    const std::optional<Image> thumbnail =
        thumbnailOf(written("a.jpg", jpegOf(quarteredPicture({160, 100}))));
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(thumbnail->size(), QSize(160, 100));
}

TEST_F(ThumbnailCacheTest, prefersAnEmbeddedPreviewHoweverSmall)
{
    const QByteArray preview = jpegOf(plainPicture({160, 120}, Qt::blue));
    // Exif with an empty first directory and a second one that points to the preview behind it.
    QByteArray exif("Exif\0\0MM\0\x2a\0\0\0\x08\0\0\0\0\0\x0e\0\x03", 22);
    exif += QByteArray("\x01\x03\0\x03\0\0\0\x01\0\x06\0\0", 12); // compression: JPEG
    exif += QByteArray("\x02\x01\0\x04\0\0\0\x01\0\0\0\x38", 12); // where: at 56
    exif += QByteArray("\x02\x02\0\x04\0\0\0\x01\0\0", 10);       // how long
    exif += char(preview.size() >> 8);
    exif += char(preview.size() & 0xff);
    exif += QByteArray(4, '\0');
    ASSERT_EQ(exif.size(), 6 + 56);
    exif += preview;
    const qsizetype length = exif.size() + 2;
    const QByteArray picture = jpegOf(plainPicture({1600, 1200}, Qt::red));
    const QByteArray block = QByteArray("\xff\xe1") + char(length >> 8) + char(length & 0xff) + exif;

    const std::optional<Image> thumbnail =
        thumbnailOf(written("a.jpg", picture.left(2) + block + picture.mid(2)));
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(thumbnail->size(), QSize(160, 120));
    EXPECT_TRUE(isNear(thumbnail->pixels().pixelColor(80, 60), Qt::blue));
}

TEST_F(ThumbnailCacheTest, redrawsThroughTheSwappedRectangleAndLaysTheRestOverWhite)
{
    const QByteArray picture = jpegOf(quarteredPicture({160, 80}));
    const std::optional<Image> thumbnail = thumbnailOf(written("six.jpg", withOrientation(picture, 6)));
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(thumbnail->size(), QSize(80, 160));
    // The upper half of the picture falls outside on the left; its lower half lies in the lower half, its
    // right end up. The rest is uncovered.
    const QImage pixels = thumbnail->pixels();
    EXPECT_TRUE(isNear(pixels.pixelColor(40, 40), Qt::white));
    EXPECT_TRUE(isNear(pixels.pixelColor(40, 100), Qt::white)) << "the white quarter";
    EXPECT_TRUE(isNear(pixels.pixelColor(40, 140), Qt::blue));

    const std::optional<Image> three = thumbnailOf(written("three.jpg", withOrientation(picture, 3)));
    ASSERT_TRUE(three);
    EXPECT_EQ(three->size(), QSize(160, 80));
    EXPECT_TRUE(isNear(three->pixels().pixelColor(120, 60), Qt::red));
    EXPECT_TRUE(isNear(three->pixels().pixelColor(40, 60), Qt::green));
}

TEST_F(ThumbnailCacheTest, answersFromTheCacheWithoutLookingAtTheSource)
{
    const FileUrl file = written("a.jpg", jpegOf(plainPicture({40, 30}, Qt::red)));
    ASSERT_TRUE(thumbnailOf(file));
    write(file, jpegOf(plainPicture({40, 30}, Qt::blue)));
    EXPECT_TRUE(isNear(thumbnailOf(file)->pixels().pixelColor(20, 15), Qt::red))
        << "a change of the source plays no part";
    ASSERT_TRUE(QFile::remove(file.path()));
    EXPECT_TRUE(isNear(thumbnailOf(file)->pixels().pixelColor(20, 15), Qt::red));
}

TEST_F(ThumbnailCacheTest, doesNotDecodeACacheFileBeforeItIsDrawn)
{
    const FileUrl file = written("a.jpg", jpegOf(plainPicture({40, 30}, Qt::red)));
    ASSERT_TRUE(thumbnailOf(file));
    const std::optional<Image> again =
        ThumbnailCache::getThumbnail(file); // from the GUI thread, which it doesn't hold up
    ASSERT_TRUE(again);
    EXPECT_FALSE(again->isDecoded());
    EXPECT_EQ(again->size(), QSize(40, 30));
}

TEST_F(ThumbnailCacheTest, refusesVideosOnTheGuiThreadWithoutWaitingForAPlace)
{
    const FileUrl picture = written("a.jpg", jpegOf(plainPicture({6000, 6000}, Qt::red)));
    const FileUrl video = fileNamed("b.mp4");
    BusyDecoders decoders(picture, QualityOfService::userInitiated);
    // A wait for a place would be about as long as a decode, a refusal takes no time but what other programs
    // take from it now and then: the call in the middle tells them apart.
    std::vector<qint64> calls;
    QElapsedTimer decodes;
    decodes.start();
    for (int i = 0; i < 15; ++i) {
        decoders.awaitDecode();
        QElapsedTimer call;
        call.start();
        EXPECT_FALSE(ThumbnailCache::generateVideoPreview(video));
        calls.push_back(call.nsecsElapsed());
    }
    const qint64 perDecode = decodes.nsecsElapsed() / decoders.count();
    std::sort(calls.begin(), calls.end());
    EXPECT_LT(calls[calls.size() / 2], perDecode / 10);
}

TEST_F(ThumbnailCacheTest, whatIsLookedAtWaitsForNoPlaceOfBackgroundWork)
{
    const FileUrl large = written("a.jpg", jpegOf(plainPicture({6000, 6000}, Qt::red)));
    const FileUrl small = written("b.jpg", jpegOf(plainPicture({40, 30}, Qt::red)));
    BusyDecoders decoders(large, QualityOfService::background);
    std::vector<qint64> calls;
    QElapsedTimer decodes;
    decodes.start();
    std::thread cell([&] {
        for (int i = 0; i < 15; ++i) {
            decoders.awaitDecode();
            QElapsedTimer call;
            call.start();
            EXPECT_TRUE(ThumbnailCache::makeThumbnail(small));
            calls.push_back(call.nsecsElapsed());
        }
    });
    cell.join();
    const qint64 perDecode = decodes.nsecsElapsed() / decoders.count();
    std::sort(calls.begin(), calls.end());
    // As above: a wait for a place is about as long as a decode.
    EXPECT_LT(calls[calls.size() / 2], perDecode / 3);
}

TEST_F(ThumbnailCacheTest, givesNoPictureForABrokenCacheFileForEver)
{
    const FileUrl picture = written("a.jpg", jpegOf(plainPicture({40, 30}, Qt::red)));
    const FileUrl video = writtenVideo("a.mp4", redVideo());
    for (const QByteArray &broken : {QByteArray(), QByteArray("\xff\xd8\xff broken"), QByteArray("words")}) {
        for (const FileUrl &file : {picture, video}) {
            write(*thumbnailURL(file), broken);
            for (int i = 0; i < 2; ++i) {
                const std::optional<Image> thumbnail = thumbnailOf(file);
                EXPECT_TRUE(!thumbnail || thumbnail->isNull());
                EXPECT_EQ(bytesOf(*thumbnailURL(file)), broken) << "it isn't made again";
            }
        }
    }
    ASSERT_TRUE(ThumbnailCache::clearCache());
    EXPECT_FALSE(thumbnailOf(picture)->isNull());
    EXPECT_FALSE(thumbnailOf(video)->isNull());
}

TEST_F(ThumbnailCacheTest, givesTwinsInTwoFoldersTheirOwnThumbnails)
{
    QDir(m_folder.path()).mkpath(QStringLiteral("one"));
    QDir(m_folder.path()).mkpath(QStringLiteral("two"));
    const FileUrl one = written("one/twin.jpg", jpegOf(plainPicture({40, 30}, Qt::red)));
    const FileUrl two = written("two/twin.jpg", jpegOf(plainPicture({40, 30}, Qt::blue)));
    ASSERT_TRUE(thumbnailOf(one) && thumbnailOf(two));
    EXPECT_TRUE(isNear(thumbnailOf(one)->pixels().pixelColor(20, 15), Qt::red));
    EXPECT_TRUE(isNear(thumbnailOf(two)->pixels().pixelColor(20, 15), Qt::blue));
}

TEST_F(ThumbnailCacheTest, makesTheThumbnailOfAVideoWhateverTheCaseOfItsExtension)
{
    const FileUrl file = writtenVideo("a.mp4", redVideo());
    const FileUrl upper = fileNamed("b.MP4");
    ASSERT_TRUE(QFile::copy(file.path(), upper.path()));
    for (const FileUrl &url : {file, upper}) {
        const std::optional<Image> thumbnail = thumbnailOf(url);
        ASSERT_TRUE(thumbnail);
        EXPECT_EQ(thumbnail->size(), QSize(64, 48));
        EXPECT_TRUE(isNear(thumbnail->pixels().pixelColor(32, 24), Qt::red));
        EXPECT_TRUE(QFileInfo::exists(thumbnailURL(url)->path()));
    }
}

TEST_F(ThumbnailCacheTest, boundsAVideosThumbnailAndPreview)
{
    TestVideo video;
    video.size = {2400, 1200};
    video.frameCount = 1;
    const FileUrl file = writtenVideo("a.mp4", video);
    EXPECT_EQ(thumbnailOf(file)->size(), QSize(800, 400));
    EXPECT_EQ(offMainThread([&] { return ThumbnailCache::generateVideoPreview(file); })->size(),
              QSize(2048, 1024));
}

TEST_F(ThumbnailCacheTest, storesAPreviewNowhere)
{
    const FileUrl file = writtenVideo("a.mp4", redVideo());
    const std::optional<Image> preview = offMainThread([&] { return ThumbnailCache::getPreviewImage(file); });
    ASSERT_TRUE(preview);
    EXPECT_TRUE(isNear(preview->pixels().pixelColor(32, 24), Qt::red));
    EXPECT_FALSE(QFileInfo::exists(thumbnailURL(file)->path()));
}

TEST_F(ThumbnailCacheTest, saysThatAPictureHasNoPreviewHere)
{
    const LogCapture log;
    const FileUrl file = written("a.jpg", jpegOf(plainPicture({40, 30}, Qt::red)));
    EXPECT_FALSE(offMainThread([&] { return ThumbnailCache::getPreviewImage(file); }));
    EXPECT_EQ(log.lines(),
              QStringList(QStringLiteral("⚠️ getPreviewImage called for image file - consider using "
                                         "getImageForDisplay() instead")));
}

TEST_F(ThumbnailCacheTest, namesTheVideoAndTheReasonWhenThereIsNoFrame)
{
    const FileUrl text = written("words.mov", QByteArray("only words\n").repeated(500));
    const LogCapture log;
    EXPECT_FALSE(thumbnailOf(text));
    EXPECT_FALSE(offMainThread([&] { return ThumbnailCache::generateVideoPreview(text); }));
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("Failed to generate video thumbnail for words.mov: Invalid "
                                          "data found when processing input"),
                           QStringLiteral("Failed to generate video preview for words.mov: Invalid "
                                          "data found when processing input")}));
}

TEST_F(ThumbnailCacheTest, saysUnknownErrorWhenTheFailureHasNoReason)
{
    // A well-formed video without a single picture in it.
    TestVideo empty;
    empty.frameCount = 0;
    const FileUrl file = writtenVideo("empty.avi", empty);
    const LogCapture log;
    EXPECT_FALSE(thumbnailOf(file));
    EXPECT_EQ(log.lines().join(u'\n').toStdString(),
              "Failed to generate video thumbnail for empty.avi: Unknown error");
    EXPECT_FALSE(QFileInfo::exists(thumbnailURL(file)->path()));
}

TEST_F(ThumbnailCacheTest, failsClearlyForCinemaFormats)
{
    const FileUrl braw = written("clip.braw", QByteArray(4096, 'b'));
    const FileUrl r3d = written("clip.R3D", QByteArray(4096, 'r'));
    const LogCapture log;
    EXPECT_FALSE(thumbnailOf(braw));
    EXPECT_FALSE(thumbnailOf(r3d));
    EXPECT_EQ(
        log.linesStartingWith(QStringLiteral("Failed to generate video thumbnail for clip.braw: ")).size(),
        1);
    EXPECT_EQ(
        log.linesStartingWith(QStringLiteral("Failed to generate video thumbnail for clip.R3D: ")).size(), 1);
}

TEST_F(ThumbnailCacheTest, namesThePictureAndTheReasonWhenItGivesNone)
{
    const FileUrl words = written("words.jpg", QByteArray("only words\n").repeated(50));
    const LogCapture log;
    EXPECT_FALSE(thumbnailOf(words));
    EXPECT_FALSE(thumbnailOf(fileNamed("missing.png")));
    ASSERT_EQ(log.lines().size(), 2);
    for (const char *start : {"❌ 缩略图生成失败: words.jpg: ", "❌ 缩略图生成失败: missing.png: "}) {
        const QStringList lines = log.linesStartingWith(QString::fromUtf8(start));
        ASSERT_EQ(lines.size(), 1) << start;
        EXPECT_GT(lines.first().size(), QString::fromUtf8(start).size()) << "a reason";
    }
    EXPECT_FALSE(QFileInfo::exists(thumbnailURL(words)->path()));
}

TEST_F(ThumbnailCacheTest, givesManyThreadsTheSamePicture)
{
    const FileUrl file = written("a.jpg", jpegOf(plainPicture({900, 600}, Qt::red)));
    std::vector<std::optional<Image>> thumbnails(8);
    std::vector<std::thread> threads;
    for (std::optional<Image> &thumbnail : thumbnails)
        threads.emplace_back([&thumbnail, &file] { thumbnail = ThumbnailCache::getThumbnail(file); });
    for (std::thread &thread : threads)
        thread.join();
    for (const std::optional<Image> &thumbnail : thumbnails) {
        ASSERT_TRUE(thumbnail);
        EXPECT_EQ(thumbnail->size(), QSize(800, 533));
    }
    EXPECT_EQ(QDir(thumbnailURL(file)->deletingLastPathComponent().path())
                  .entryList(QDir::Files | QDir::Hidden)
                  .size(),
              1);
}
