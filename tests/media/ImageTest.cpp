#include "media/Image.h"

#include <QFile>
#include <QTemporaryDir>
#include <QVariant>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qorvane;

namespace {

class ImageTest : public testing::Test
{
protected:
    QString fileNamed(const QString &name) const { return m_folder.filePath(name); }

    /// A file with a picture of one colour.
    QString savedPicture(const QString &name, const char *format = "PNG") const
    {
        QImage picture(12, 7, QImage::Format_RGB32);
        picture.fill(QColor(10, 200, 30));
        EXPECT_TRUE(picture.save(fileNamed(name), format));
        return fileNamed(name);
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ImageTest, isNullByDefaultAndFromNullPixels)
{
    EXPECT_TRUE(Image().isNull());
    EXPECT_TRUE(Image(QImage()).isNull());
    EXPECT_TRUE(Image().pixels().isNull());
    EXPECT_TRUE(Image().size().isEmpty());
}

TEST_F(ImageTest, givesBackThePixelsItWasMadeFrom)
{
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const Image image(picture);
    EXPECT_TRUE(image.isDecoded());
    EXPECT_FALSE(image.isNull());
    EXPECT_EQ(image.pixels(), picture);
    EXPECT_EQ(image.size(), QSize(3, 2));
}

TEST_F(ImageTest, decodesAFileOnlyWhenThePixelsAreNeeded)
{
    const Image image = Image::fromFile(savedPicture(QStringLiteral("a.png")));
    EXPECT_FALSE(image.isDecoded());
    EXPECT_FALSE(image.isNull());
    EXPECT_TRUE(image.isDecoded());
    EXPECT_EQ(image.size(), QSize(12, 7));
    EXPECT_EQ(image.pixels().pixelColor(5, 5), QColor(10, 200, 30));
}

TEST_F(ImageTest, decodesOnceForAllCopies)
{
    const QString path = savedPicture(QStringLiteral("a.png"));
    const Image image = Image::fromFile(path);
    const Image copy = image;
    ASSERT_FALSE(copy.isNull());
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_TRUE(image.isDecoded());
    EXPECT_FALSE(image.isNull());
    EXPECT_EQ(image.pixels().constBits(), copy.pixels().constBits())
        << "the pixels are shared, not decoded twice";
}

TEST_F(ImageTest, readsByContentWhateverTheNameSays)
{
    EXPECT_FALSE(Image::fromFile(savedPicture(QStringLiteral("really-png.jpg"))).isNull());
}

TEST_F(ImageTest, isNullForGoodWhenTheFileGaveNoPicture)
{
    const QString path = fileNamed(QStringLiteral("later.png"));
    const Image missing = Image::fromFile(path);
    EXPECT_TRUE(missing.isNull());
    savedPicture(QStringLiteral("later.png"));
    EXPECT_TRUE(missing.isNull());

    QFile corrupt(fileNamed(QStringLiteral("corrupt.jpg")));
    ASSERT_TRUE(corrupt.open(QIODevice::WriteOnly));
    corrupt.write("\xff\xd8\xff nothing of a picture");
    corrupt.close();
    EXPECT_TRUE(Image::fromFile(corrupt.fileName()).isNull());
}

TEST_F(ImageTest, isTheSamePictureForManyThreadsAtOnce)
{
    const Image image = Image::fromFile(savedPicture(QStringLiteral("a.png")));
    std::atomic<const uchar *> bits = nullptr;
    std::atomic_int differences = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            const QImage pixels = image.pixels();
            const uchar *first = nullptr;
            if (!bits.compare_exchange_strong(first, pixels.constBits()) && first != pixels.constBits())
                ++differences;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(differences, 0);
    EXPECT_NE(bits.load(), nullptr);
}

TEST_F(ImageTest, travelsInAVariant)
{
    const Image image = Image::fromFile(savedPicture(QStringLiteral("a.png")));
    const QVariant variant = QVariant::fromValue(image);
    EXPECT_FALSE(image.isDecoded()) << "wrapping doesn't decode";
    EXPECT_EQ(variant.value<Image>().size(), QSize(12, 7));
}
