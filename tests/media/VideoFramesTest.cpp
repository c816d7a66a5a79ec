#include "media/VideoFrames.h"

#include "media/OffMainThread.h"
#include "media/TestVideo.h"
#include "media/VideoInput.h"
#include "media/VideoPicture.h"

#include <QColorSpace>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

using namespace Qorvane;

namespace {

// Lossy coding of plain areas moves a component by a few steps; a wrong matrix or range by far more.
constexpr int codingTolerance = 6;

bool isNear(QColor one, QColor other, int tolerance = codingTolerance)
{
    return std::abs(one.red() - other.red()) <= tolerance &&
           std::abs(one.green() - other.green()) <= tolerance &&
           std::abs(one.blue() - other.blue()) <= tolerance;
}

::testing::AssertionResult hasColour(const QImage &image, double x, double y, QColor expected)
{
    const QColor found = image.pixelColor(int(x * image.width()), int(y * image.height()));
    if (isNear(found, expected))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << found.name().toStdString() << " instead of "
                                         << expected.name().toStdString() << " at " << x << ", " << y;
}

class VideoFramesTest : public testing::Test
{
protected:
    QString fileNamed(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    QString written(const char *name, const TestVideo &video) const
    {
        writeTestVideo(fileNamed(name), video);
        return fileNamed(name);
    }

    QString writtenBytes(const char *name, const QByteArray &bytes) const
    {
        QFile file(fileNamed(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }

    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    static std::optional<QImage> frameOf(const QString &path, int maxSize = 800, QString *error = nullptr)
    {
        return offMainThread([&] { return generateVideoFrame(path, maxSize, error); });
    }

    static QString failureOf(const QString &path)
    {
        QString error;
        EXPECT_FALSE(frameOf(path, 800, &error));
        return error;
    }

    QTemporaryDir m_folder;
};

// Frame i is a grey of 16 times i, modulo 256, so that neighbours differ by more than the coding blurs.
TestVideo countingVideo(int seconds)
{
    TestVideo video;
    video.framesPerSecond = 10;
    video.frameCount = seconds * video.framesPerSecond;
    video.picture = [size = video.size](int index) {
        const int grey = (index * 16) % 256;
        return plainPicture(size, QColor(grey, grey, grey));
    };
    return video;
}

int frameIndexIn(const QImage &image)
{
    return int(std::lround(image.pixelColor(image.rect().center()).green() / 16.0));
}

} // namespace

TEST(VideoFrameSeconds, areATenthOfTheLengthButAtMostOneSecond)
{
    EXPECT_DOUBLE_EQ(videoFrameSeconds(3), 0.3);
    EXPECT_DOUBLE_EQ(videoFrameSeconds(9.9), 0.99);
    EXPECT_DOUBLE_EQ(videoFrameSeconds(10), 1.0);
    EXPECT_DOUBLE_EQ(videoFrameSeconds(20), 1.0);
}

TEST(VideoFrameSeconds, areWholeSixHundredths)
{
    EXPECT_DOUBLE_EQ(videoFrameSeconds(0.333), 20.0 / 600);
    EXPECT_DOUBLE_EQ(videoFrameSeconds(0.005), 0.0);
}

TEST(VideoFrameSeconds, areZeroWithoutALength)
{
    EXPECT_EQ(videoFrameSeconds(0), 0);
    EXPECT_EQ(videoFrameSeconds(-1), 0);
    EXPECT_EQ(videoFrameSeconds(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST_F(VideoFramesTest, takesAThreeSecondVideoAtThreeTenths)
{
    for (const char *name : {"a.mp4", "a.mkv", "a.avi", "a.mov"}) {
        const std::optional<QImage> frame = frameOf(written(name, countingVideo(3)));
        ASSERT_TRUE(frame) << name;
        EXPECT_EQ(frameIndexIn(*frame), 3) << name;
    }
}

TEST_F(VideoFramesTest, takesATwentySecondVideoAtOneSecond)
{
    for (const char *name : {"a.mp4", "a.mkv", "a.avi", "a.mov"}) {
        const std::optional<QImage> frame = frameOf(written(name, countingVideo(20)));
        ASSERT_TRUE(frame) << name;
        EXPECT_EQ(frameIndexIn(*frame), 10) << name;
    }
}

TEST_F(VideoFramesTest, takesTheNearestKeyFrame)
{
    TestVideo video = countingVideo(3); // sampled at frame 3
    video.isKeyFrame = [](int index) { return index == 0 || index == 4; };
    const std::optional<QImage> later = frameOf(written("later.mp4", video));
    ASSERT_TRUE(later);
    EXPECT_EQ(frameIndexIn(*later), 4);

    video.isKeyFrame = [](int index) { return index == 0 || index == 8; };
    const std::optional<QImage> earlier = frameOf(written("earlier.mp4", video));
    ASSERT_TRUE(earlier);
    EXPECT_EQ(frameIndexIn(*earlier), 0);
}

// The decoder has to make a whole picture of what it is given; of a frame that only tells differences it
// makes mud.
TEST_F(VideoFramesTest, doesNotBelieveAContainerThatCallsEveryFrameAKeyFrame)
{
    TestVideo video = countingVideo(3); // sampled at frame 3
    video.encoder = "msmpeg4v2";
    video.isEveryFrameCalledKey = true;
    video.isKeyFrame = [](int index) { return index == 0 || index == 7; };
    const std::optional<QImage> next = frameOf(written("a.mkv", video));
    ASSERT_TRUE(next);
    EXPECT_EQ(frameIndexIn(*next), 7);

    video.isKeyFrame = [](int index) { return index == 0; };
    const std::optional<QImage> first = frameOf(written("b.mkv", video));
    ASSERT_TRUE(first);
    EXPECT_EQ(frameIndexIn(*first), 0) << "none follows, so it is the one at the start";
}

TEST_F(VideoFramesTest, findsTheOnlyKeyFrameOfABroadcastStream)
{
    TestVideo video = countingVideo(4);
    video.encoder = "mpeg2video";
    video.framesPerSecond = 25;
    video.picture = [size = video.size](int index) {
        return plainPicture(size, index == 0 ? QColor(200, 100, 50) : QColor(10, 10, 10));
    };
    video.isKeyFrame = [](int index) { return index == 0; };
    const std::optional<QImage> frame = frameOf(written("a.ts", video));
    ASSERT_TRUE(frame);
    EXPECT_TRUE(hasColour(*frame, 0.5, 0.5, QColor(200, 100, 50)));
}

TEST_F(VideoFramesTest, takesNoCoverForAVideo)
{
    TestVideo cover;
    cover.encoder = "mjpeg";
    cover.pixelFormat = AV_PIX_FMT_YUVJ420P;
    cover.frameCount = 1;
    cover.isCover = true;
    EXPECT_EQ(failureOf(written("cover.mp4", cover)), QStringLiteral("no picture track"));
}

TEST_F(VideoFramesTest, takesAVideoWithoutALengthAtItsStart)
{
    TestVideo video = countingVideo(3);
    video.encoder = "libx265";
    // The bare stream: no container, so no length and no index.
    const QString path = written("a.hevc", video);
    for (const QString &name : {path, path.chopped(4) + QStringLiteral("h265")}) {
        ASSERT_TRUE(name == path || QFile::rename(path, name));
        const std::optional<QImage> frame = frameOf(name);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frameIndexIn(*frame), 0);
    }
}

TEST_F(VideoFramesTest, takesTheOnlyFrameOfAVideoOfOne)
{
    TestVideo video;
    video.frameCount = 1;
    video.picture = [&](int) { return plainPicture(video.size, QColor(200, 40, 90)); };
    for (const char *name : {"one.mp4", "one.avi", "one.mkv"}) {
        const std::optional<QImage> frame = frameOf(written(name, video));
        ASSERT_TRUE(frame) << name;
        EXPECT_TRUE(hasColour(*frame, 0.5, 0.5, QColor(200, 40, 90))) << name;
    }
}

TEST_F(VideoFramesTest, turnsTheFrameAsTheTrackAsks)
{
    TestVideo video;
    video.size = {64, 32};
    video.picture = [&](int) { return quarteredPicture(video.size); };

    struct Expectation
    {
        int quarterTurns;
        QSize size;
        std::array<QColor, 4> corners; // top left, top right, bottom left, bottom right
    };
    const QColor red(Qt::red), green(Qt::green), blue(Qt::blue), white(Qt::white);
    const Expectation expectations[] = {
        {0, {64, 32}, {red, green, blue, white}},
        {1, {32, 64}, {blue, red, white, green}},
        {2, {64, 32}, {white, blue, green, red}},
        {3, {32, 64}, {green, white, red, blue}},
    };
    for (const Expectation &expectation : expectations) {
        video.quarterTurns = expectation.quarterTurns;
        const std::optional<QImage> frame = frameOf(written("turned.mp4", video));
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->size(), expectation.size) << expectation.quarterTurns;
        EXPECT_TRUE(hasColour(*frame, 0.25, 0.25, expectation.corners[0])) << expectation.quarterTurns;
        EXPECT_TRUE(hasColour(*frame, 0.75, 0.25, expectation.corners[1])) << expectation.quarterTurns;
        EXPECT_TRUE(hasColour(*frame, 0.25, 0.75, expectation.corners[2])) << expectation.quarterTurns;
        EXPECT_TRUE(hasColour(*frame, 0.75, 0.75, expectation.corners[3])) << expectation.quarterTurns;
    }
}

TEST_F(VideoFramesTest, mirrorsTheFrameAsTheTrackAsks)
{
    TestVideo video;
    video.isMirrored = true;
    video.picture = [&](int) { return quarteredPicture(video.size); };
    const std::optional<QImage> frame = frameOf(written("mirrored.mov", video));
    ASSERT_TRUE(frame);
    EXPECT_TRUE(hasColour(*frame, 0.25, 0.25, Qt::green));
    EXPECT_TRUE(hasColour(*frame, 0.75, 0.75, Qt::blue));
}

TEST_F(VideoFramesTest, makesThePixelsSquare)
{
    TestVideo video;
    video.size = {64, 48};
    video.pixelShape = {2, 1};
    EXPECT_EQ(frameOf(written("wide.mp4", video))->size(), QSize(128, 48));
    EXPECT_EQ(frameOf(written("wide.mkv", video))->size(), QSize(128, 48));
    video.pixelShape = {1, 2};
    EXPECT_EQ(frameOf(written("narrow.mp4", video))->size(), QSize(32, 48));
    video.pixelShape = {2, 1};
    video.quarterTurns = 1;
    EXPECT_EQ(frameOf(written("turned.mp4", video))->size(), QSize(48, 128)) << "shaped first, then turned";
}

TEST_F(VideoFramesTest, fitsTheFrameIntoTheSizeAskedForAndNeverEnlargesIt)
{
    TestVideo video;
    video.frameCount = 1;
    video.size = {320, 180};
    const QString path = written("a.mp4", video);
    EXPECT_EQ(frameOf(path, 80)->size(), QSize(80, 45));
    EXPECT_EQ(frameOf(path, 800)->size(), QSize(320, 180));
    video.quarterTurns = 3;
    EXPECT_EQ(frameOf(written("b.mp4", video), 80)->size(), QSize(45, 80));
}

TEST(FittedFrameSize, keepsEverySideAtLeastOnePixelAndAtMostTheLimit)
{
    EXPECT_EQ(fittedFrameSize({1920, 1080}, 1, 800), QSize(800, 450));
    EXPECT_EQ(fittedFrameSize({1440, 1080}, 4.0 / 3, 800), QSize(800, 450));
    EXPECT_EQ(fittedFrameSize({16000, 2}, 1, 800), QSize(800, 1));
    EXPECT_EQ(fittedFrameSize({2, 16000}, 1, 800), QSize(1, 800));
    EXPECT_EQ(fittedFrameSize({720, 576}, 64.0 / 45, 2048), QSize(1024, 576));
}

TEST_F(VideoFramesTest, rendersTheColoursByTheVideosMatrixAndRange)
{
    struct Case
    {
        const char *name;
        QByteArray encoder;
        AVPixelFormat format;
        AVColorSpace matrix;
        bool isMatrixTold;
        QSize size;
    };
    // Without a word the matrix is that of standard definition below 720 lines, and of high definition from
    // there on.
    const Case cases[] = {
        {"limited.mp4", "mpeg4", AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, false, {64, 48}},
        {"full.avi", "mjpeg", AV_PIX_FMT_YUVJ420P, AVCOL_SPC_SMPTE170M, false, {64, 48}},
        {"high.mp4", "mpeg4", AV_PIX_FMT_YUV420P, AVCOL_SPC_BT709, false, {1280, 720}},
        {"told.mp4", "libx265", AV_PIX_FMT_YUV420P, AVCOL_SPC_BT709, true, {64, 48}},
    };
    for (const Case &each : cases) {
        TestVideo video;
        video.encoder = each.encoder;
        video.pixelFormat = each.format;
        video.matrix = each.matrix;
        video.isMatrixTold = each.isMatrixTold;
        video.size = each.size;
        video.frameCount = 1;
        video.picture = [&](int) { return quarteredPicture(video.size); };
        const std::optional<QImage> frame = frameOf(written(each.name, video));
        ASSERT_TRUE(frame) << each.name;
        EXPECT_TRUE(hasColour(*frame, 0.25, 0.25, Qt::red)) << each.name;
        EXPECT_TRUE(hasColour(*frame, 0.75, 0.25, Qt::green)) << each.name;
        EXPECT_TRUE(hasColour(*frame, 0.25, 0.75, Qt::blue)) << each.name;
        EXPECT_TRUE(hasColour(*frame, 0.75, 0.75, Qt::white)) << each.name;
        EXPECT_EQ(frame->colorSpace(), QColorSpace(QColorSpace::SRgb)) << each.name;
    }
}

TEST_F(VideoFramesTest, readsByContentWhateverTheNameSays)
{
    written("a.mkv", countingVideo(3));
    ASSERT_TRUE(QFile::rename(fileNamed("a.mkv"), fileNamed("really-mkv.mp4")));
    EXPECT_TRUE(frameOf(fileNamed("really-mkv.mp4")));
}

TEST_F(VideoFramesTest, takesNamesThatLookLikeAddresses)
{
    written("a.mp4", countingVideo(3));
    const QString odd = m_folder.filePath(QStringLiteral("http:照片 %41 é.mp4"));
    ASSERT_TRUE(QFile::rename(fileNamed("a.mp4"), odd));
    EXPECT_TRUE(frameOf(odd));
}

TEST_F(VideoFramesTest, saysWhyThereIsNoFrame)
{
    EXPECT_EQ(failureOf(fileNamed("missing.mp4")), QStringLiteral("No such file or directory"));
    EXPECT_EQ(failureOf(m_folder.path()), QStringLiteral("not a regular file"));
    EXPECT_EQ(failureOf(writtenBytes("empty.mp4", {})),
              QStringLiteral("Invalid data found when processing input"));
    EXPECT_EQ(failureOf(writtenBytes("text.mov", QByteArray("only words\n").repeated(500))),
              QStringLiteral("Invalid data found when processing input"));
}

TEST_F(VideoFramesTest, namesAFormatThatItHasNoDecoderFor)
{
    TestVideo video = countingVideo(1);
    video.encoder = "mjpeg";
    video.pixelFormat = AV_PIX_FMT_YUVJ420P;
    QByteArray bytes = bytesOf(written("a.mov", video));
    // The track's format as the sample description names it, after the description's own length.
    const qsizetype description = bytes.indexOf("stsd");
    ASSERT_GT(description, 0);
    const qsizetype format = bytes.indexOf("jpeg", description);
    ASSERT_LT(format, description + 32);
    writtenBytes("clip.braw", bytes.replace(format, 4, "brxq"));
    EXPECT_EQ(failureOf(fileNamed("clip.braw")), QStringLiteral("no decoder for its format (brxq)"));
}

TEST_F(VideoFramesTest, doesNotWaitForAPipe)
{
    const QString path = fileNamed("pipe.mp4");
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_EQ(failureOf(path), QStringLiteral("not a regular file"));
}

TEST_F(VideoFramesTest, givesUpWhenTheTimeIsUp)
{
    const QString path = written("a.mp4", countingVideo(3));
    QString error;
    EXPECT_TRUE(VideoInput::open(path, std::chrono::seconds(20), &error));
    EXPECT_FALSE(VideoInput::open(path, std::chrono::seconds(0), &error));
    EXPECT_EQ(error, QStringLiteral("it took too long"));
}

TEST_F(VideoFramesTest, opensNoOtherFileOnAVideosSayso)
{
    written("other.ts", countingVideo(3));
    ASSERT_TRUE(frameOf(fileNamed("other.ts"))) << "the file referred to is a good one";
    const QByteArray playlist = "#EXTM3U\n#EXT-X-TARGETDURATION:3\n#EXTINF:3,\nother.ts\n#EXT-X-ENDLIST\n";
    EXPECT_FALSE(failureOf(writtenBytes("list.mp4", playlist)).isEmpty());
    EXPECT_FALSE(failureOf(writtenBytes("concat.mp4", "ffconcat version 1.0\nfile other.ts\n")).isEmpty());
}

TEST_F(VideoFramesTest, refusesTheGuiThread)
{
    const QString path = written("a.mp4", countingVideo(3));
    QString error;
    EXPECT_FALSE(generateVideoFrame(path, 800, &error));
    EXPECT_EQ(error, QStringLiteral("videos are not opened on the GUI thread"));
}

TEST_F(VideoFramesTest, refusesAFrameThatWouldTakeTooMuchMemory)
{
    TestVideo video;
    video.encoder = "mjpeg";
    video.pixelFormat = AV_PIX_FMT_YUVJ420P;
    video.frameCount = 2;
    QByteArray bytes = bytesOf(written("a.avi", video));
    // Each frame is a JPEG of its own: FF C0, length, precision, then height and width, here made 65,000
    // each.
    const QByteArray frameHeader("\xff\xc0\x00\x11\x08", 5);
    ASSERT_TRUE(bytes.contains(frameHeader));
    for (qsizetype at = bytes.indexOf(frameHeader); at >= 0; at = bytes.indexOf(frameHeader, at + 1))
        bytes.replace(at + frameHeader.size(), 4, QByteArray("\xfd\xe8\xfd\xe8", 4));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(frameOf(writtenBytes("huge.avi", bytes)));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(VideoFramesTest, takesWhatThereIsOfAFileCutShort)
{
    const QByteArray bytes = bytesOf(written("a.avi", countingVideo(20)));
    const std::optional<QImage> frame = frameOf(writtenBytes("cut.avi", bytes.left(bytes.size() / 2)));
    ASSERT_TRUE(frame);
    EXPECT_LT(frameIndexIn(*frame), 16);
}

TEST_F(VideoFramesTest, survivesAFileCutAnywhere)
{
    TestVideo video = countingVideo(1);
    video.size = {32, 32};
    for (const char *name : {"a.mp4", "a.avi", "a.mkv"}) {
        const QByteArray bytes = bytesOf(written(name, video));
        for (int i = 0; i < 60; ++i) {
            const std::optional<QImage> frame =
                frameOf(writtenBytes("cut", bytes.left(bytes.size() * i / 60)));
            EXPECT_TRUE(!frame || frame->size() == QSize(32, 32)) << name << " " << i;
        }
    }
}

TEST_F(VideoFramesTest, survivesFlippedBits)
{
    TestVideo video = countingVideo(1);
    video.size = {32, 32};
    QRandomGenerator random(2024); // fixed, so that a failure can be met again
    int decoded = 0;
    for (const char *name : {"a.mp4", "a.avi", "a.mkv"}) {
        const QByteArray bytes = bytesOf(written(name, video));
        for (int round = 0; round < 150; ++round) {
            QByteArray damaged = bytes;
            for (int flip = random.bounded(1, 30); flip > 0; --flip) {
                const qsizetype at = random.bounded(int(damaged.size()));
                damaged[at] = char(damaged[at] ^ (1 << random.bounded(8)));
            }
            const std::optional<QImage> frame = frameOf(writtenBytes("damaged", damaged), 64);
            if (!frame)
                continue;
            ++decoded;
            EXPECT_LE(std::max(frame->width(), frame->height()), 64);
            EXPECT_FALSE(frame->size().isEmpty());
        }
    }
    EXPECT_GT(decoded, 50) << "light damage usually leaves a frame";
}
