#include "clip/EmbeddingPicture.h"

#include "clip/ClipTest.h"
#include "media/ImageSource.h"
#include "media/PictureFiles.h"
#include "media/ThumbnailPaths.h"

#include <QColor>
#include <QDir>
#include <QFile>

using namespace Qorvane;

using EmbeddingPictureTest = ClipTest;

namespace {

QColor middleOf(const Image &image)
{
    const QImage pixels = image.pixels();
    return pixels.pixelColor(pixels.width() / 2, pixels.height() / 2);
}

} // namespace

TEST_F(EmbeddingPictureTest, isTheThumbnailThatIsThere)
{
    const FileUrl file = makePicture(QStringLiteral("red.png"), Qt::red);
    ASSERT_TRUE(plainPicture(Qt::blue).save(thumbnailURL(file)->path(), "JPG"));
    const auto picture = embeddingPicture(file);
    ASSERT_TRUE(picture);
    EXPECT_GT(middleOf(*picture).blue(), 240);
}

TEST_F(EmbeddingPictureTest, isMadeAndStoredWhenThereIsNone)
{
    const FileUrl file = url(QStringLiteral("large.png"));
    ASSERT_TRUE(plainPicture(Qt::green, {1600, 900}).save(file.path()));
    const auto picture = embeddingPicture(file);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->size(), QSize(800, 450));
    const QImage stored(thumbnailURL(file)->path(), "JPG");
    EXPECT_EQ(stored.size(), QSize(800, 450));
}

TEST_F(EmbeddingPictureTest, isMadeWithoutTurningItByItsOrientation)
{
    constexpr int turnedRight = 6; // as EXIF counts
    const FileUrl file = url(QStringLiteral("turned.jpg"));
    QFile original(file.path());
    ASSERT_TRUE(original.open(QIODevice::WriteOnly));
    original.write(
        PictureFiles::withExif(PictureFiles::jpeg(plainPicture(Qt::green, {160, 90})), {}, turnedRight));
    original.close();
    const auto source = ImageSource::open(file.path());
    ASSERT_TRUE(source);
    ASSERT_EQ(source->orientation(), turnedRight);
    const auto picture = makeThumbnail(file);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->size(), QSize(160, 90));
    EXPECT_EQ(QImage(thumbnailURL(file)->path(), "JPG").size(), QSize(160, 90));
}

TEST_F(EmbeddingPictureTest, isMadeAnewWhenTheThumbnailDoesNotLoad)
{
    const FileUrl file = makePicture(QStringLiteral("red.png"), Qt::red);
    QFile thumbnail(thumbnailURL(file)->path());
    ASSERT_TRUE(thumbnail.open(QIODevice::WriteOnly));
    thumbnail.write("no picture");
    thumbnail.close();
    const auto picture = embeddingPicture(file);
    ASSERT_TRUE(picture);
    EXPECT_GT(middleOf(*picture).red(), 240);
    EXPECT_FALSE(QImage(thumbnail.fileName(), "JPG").isNull());
}

TEST_F(EmbeddingPictureTest, isNothingWhenTheFileIsNoPictureOrIsGone)
{
    EXPECT_FALSE(embeddingPicture(makeBrokenFile(QStringLiteral("broken.jpg"))));
    EXPECT_FALSE(embeddingPicture(url(QStringLiteral("gone.jpg"))));
}

TEST_F(EmbeddingPictureTest, isNothingWhenTheThumbnailCannotBeWritten)
{
    const FileUrl file = makePicture(QStringLiteral("red.png"), Qt::red);
    const QString folder = thumbnailURL(file)->deletingLastPathComponent().path();
    ASSERT_TRUE(QDir(folder).removeRecursively());
    QFile obstacle(folder);
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    EXPECT_FALSE(embeddingPicture(file));
}
