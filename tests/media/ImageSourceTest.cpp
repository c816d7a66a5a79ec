#include "media/ImageSource.h"

#include "media/PictureFiles.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <lcms2.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

namespace Qorvane {

namespace {

/// The mean difference of a channel, 0 to 255, between pictures brought to one size.
double difference(const QImage &a, const QImage &b)
{
    const QImage left = a.convertToFormat(QImage::Format_RGB32);
    const QImage right = b.scaled(a.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                             .convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb p = left.pixel(x, y);
            const QRgb q = right.pixel(x, y);
            sum +=
                std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    }
    return sum / (3.0 * left.width() * left.height());
}

class ImageSourceTest : public testing::Test
{
protected:
    QString file(const QString &name, const QByteArray &bytes)
    {
        return PictureFiles::write(folder, name, bytes);
    }
    /// The thumbnail, or nothing and `reason`.
    std::optional<QImage> thumbnailOf(const QString &path, int side = 800)
    {
        reason.clear();
        const auto source = ImageSource::open(path, &reason);
        return source ? source->thumbnail(side, &reason) : std::nullopt;
    }
    std::optional<QImage> thumbnailOf(const QString &name, const QByteArray &bytes, int side = 800)
    {
        EXPECT_FALSE(bytes.isEmpty()) << "no test data for " << qPrintable(name);
        return thumbnailOf(file(name, bytes), side);
    }

    QTemporaryDir folder;
    QString reason;
    const QImage picture = PictureFiles::testPicture(320, 200);
};

QByteArray displayP3Profile()
{
    const cmsCIExyY white = {0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries = {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}};
    cmsToneCurve *curve = cmsBuildGamma(nullptr, 2.2);
    cmsToneCurve *curves[] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    QByteArray bytes(qsizetype(size), Qt::Uninitialized);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    cmsFreeToneCurve(curve);
    return bytes;
}

} // namespace

struct FormatCase
{
    const char *name;
    QByteArray (*make)(const QImage &);
    double tolerance; ///< mean difference of a channel
};

void PrintTo(const FormatCase &format, std::ostream *out)
{
    *out << format.name;
}

class ImageSourceFormatTest : public ImageSourceTest, public testing::WithParamInterface<FormatCase>
{
};

TEST_P(ImageSourceFormatTest, decodesThePictureAtItsOwnSizeWhenItIsSmall)
{
    const auto image = thumbnailOf(QString::fromLatin1(GetParam().name), GetParam().make(picture));
    ASSERT_TRUE(image) << qPrintable(reason);
    EXPECT_EQ(image->size(), picture.size());
    EXPECT_EQ(image->format(), QImage::Format_RGB32);
    EXPECT_LT(difference(*image, picture), GetParam().tolerance);
}

TEST_P(ImageSourceFormatTest, reducesToTheLargestSide)
{
    const QByteArray bytes = GetParam().make(picture);
    const auto image = thumbnailOf(QString::fromLatin1(GetParam().name), bytes, 80);
    ASSERT_TRUE(image) << qPrintable(reason);
    EXPECT_EQ(image->size(), QSize(80, 50));
    EXPECT_LT(difference(*image, picture), GetParam().tolerance + 2);
}

TEST_P(ImageSourceFormatTest, aFileCutAnywhereGivesSomethingOrAReason)
{
    const QByteArray bytes = GetParam().make(PictureFiles::testPicture(40, 30));
    ASSERT_FALSE(bytes.isEmpty()) << "no encoder for this kind is installed";
    for (int part = 0; part < 20; ++part) {
        const auto image =
            thumbnailOf(file(QString::fromLatin1(GetParam().name), bytes.left(bytes.size() * part / 20)));
        EXPECT_TRUE(image || !reason.isEmpty()) << part;
    }
}

TEST_P(ImageSourceFormatTest, flippedBitsNeverEndTheProgram)
{
    const QByteArray bytes = GetParam().make(PictureFiles::testPicture(24, 16));
    ASSERT_FALSE(bytes.isEmpty()) << "no encoder for this kind is installed";
    std::srand(1);
    for (int seed = 0; seed < 100; ++seed) {
        QByteArray damaged = bytes;
        const int flips = 1 + std::rand() % 8;
        for (int i = 0; i < flips; ++i) {
            // Half of them in the header, where the sizes are.
            const qsizetype range = i % 2 == 0 ? qMin(qsizetype(64), damaged.size()) : damaged.size();
            const qsizetype at = std::rand() % range;
            damaged[at] = char(damaged[at] ^ (1 << std::rand() % 8));
        }
        const auto image = thumbnailOf(file(QString::fromLatin1(GetParam().name), damaged));
        ASSERT_TRUE(image || !reason.isEmpty()) << seed;
        if (image) {
            ASSERT_LE(qMax(image->width(), image->height()), 800);
            ASSERT_FALSE(image->isNull());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ImageSourceFormatTest,
    testing::Values(
        FormatCase{"a.jpg", [](const QImage &p) { return PictureFiles::jpeg(p); }, 3},
        FormatCase{"progressive.jpg",
                   [](const QImage &p) {
                       return PictureFiles::jpeg(p, {PictureFiles::JpegColour::ycc, true, 95, {}});
                   },
                   3},
        FormatCase{"cmyk.jpg",
                   [](const QImage &p) {
                       return PictureFiles::jpeg(p, {PictureFiles::JpegColour::cmyk, false, 95, {}});
                   },
                   3},
        FormatCase{"a.png", [](const QImage &p) { return PictureFiles::qtFile(p, "png"); }, 1},
        FormatCase{"a.bmp", [](const QImage &p) { return PictureFiles::qtFile(p, "bmp"); }, 1},
        FormatCase{"a.dib", [](const QImage &p) { return PictureFiles::qtFile(p, "bmp").mid(14); }, 1},
        FormatCase{"a.ppm", [](const QImage &p) { return PictureFiles::qtFile(p, "ppm"); }, 1},
        FormatCase{"a.tif", [](const QImage &p) { return PictureFiles::vipsFile(p, ".tif"); }, 1},
        FormatCase{"lzw.tiff",
                   [](const QImage &p) { return PictureFiles::vipsFile(p, ".tif[compression=lzw,tile]"); },
                   1},
        FormatCase{"a.webp", [](const QImage &p) { return PictureFiles::vipsFile(p, ".webp[Q=95]"); }, 5},
        FormatCase{"a.gif", [](const QImage &p) { return PictureFiles::vipsFile(p, ".gif"); }, 6},
        FormatCase{"a.jp2", [](const QImage &p) { return PictureFiles::vipsFile(p, ".jp2[Q=60]"); }, 4},
        FormatCase{"a.heic", [](const QImage &p) { return PictureFiles::vipsFile(p, ".avif[Q=90]"); }, 4},
        FormatCase{"a.tga", PictureFiles::tga, 1}, FormatCase{"a.psd", PictureFiles::psd, 1},
        FormatCase{"a.pic", PictureFiles::softimagePic, 1},
        FormatCase{"jpeg.qtif",
                   [](const QImage &p) {
                       return PictureFiles::quickTimeImage("jpeg", PictureFiles::jpeg(p), p.size(), 24);
                   },
                   3},
        FormatCase{"raw.qtif",
                   [](const QImage &p) {
                       const QImage rgb = p.convertToFormat(QImage::Format_RGB888);
                       QByteArray samples;
                       for (int y = 0; y < rgb.height(); ++y)
                           samples.append(reinterpret_cast<const char *>(rgb.constScanLine(y)),
                                          qsizetype(rgb.width()) * 3);
                       return PictureFiles::quickTimeImage("raw ", samples, p.size(), 24);
                   },
                   1},
        FormatCase{"a.x3f", [](const QImage &p) { return PictureFiles::x3f({PictureFiles::jpeg(p)}, 0); }, 3},
        FormatCase{"preview.dng",
                   [](const QImage &p) { return PictureFiles::dng(p, PictureFiles::jpeg(p), p.size(), 1); },
                   3}),
    [](const testing::TestParamInfo<FormatCase> &format) {
        std::string name = format.param.name;
        std::replace(name.begin(), name.end(), '.', '_');
        return name;
    });

TEST_F(ImageSourceTest, anEmbedded160PixelPreviewYieldsA160PixelThumbnail)
{
    const QImage preview = PictureFiles::testPicture(160, 120).rgbSwapped();
    const QByteArray bytes = PictureFiles::withExif(PictureFiles::jpeg(PictureFiles::testPicture(1600, 1200)),
                                                    PictureFiles::jpeg(preview), 6);
    const auto source = ImageSource::open(file(QStringLiteral("a.jpg"), bytes));
    ASSERT_TRUE(source);
    const auto image = source->thumbnail(800);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), QSize(160, 120)); // unrotated as well
    EXPECT_LT(difference(*image, preview), 4);
    EXPECT_EQ(source->orientation(), 6);
}

TEST_F(ImageSourceTest, theEmbeddedPreviewIsNotUsedForThePictureItself)
{
    const QImage main = PictureFiles::testPicture(1600, 1200);
    const QByteArray bytes = PictureFiles::withExif(
        PictureFiles::jpeg(main), PictureFiles::jpeg(PictureFiles::testPicture(160, 120).rgbSwapped()), 1);
    const auto source = ImageSource::open(file(QStringLiteral("a.jpg"), bytes));
    ASSERT_TRUE(source);
    const auto bounded = source->boundedImage(800);
    ASSERT_TRUE(bounded);
    EXPECT_EQ(bounded->size(), QSize(800, 600));
    EXPECT_LT(difference(*bounded, main), 4);
    const auto full = source->fullImage();
    ASSERT_TRUE(full);
    EXPECT_EQ(full->size(), QSize(1600, 1200));
}

TEST_F(ImageSourceTest, aBrokenPreviewGivesWayToThePicture)
{
    const QByteArray preview = PictureFiles::jpeg(PictureFiles::testPicture(160, 120));
    for (const QByteArray &broken :
         {preview.left(preview.size() / 2), QByteArray("\xff\xd8\xff\xd9no picture", 14)}) {
        const QByteArray bytes =
            PictureFiles::withExif(PictureFiles::jpeg(PictureFiles::testPicture(1600, 1200)), broken, 1);
        const auto image = thumbnailOf(QStringLiteral("a.jpg"), bytes);
        ASSERT_TRUE(image) << qPrintable(reason);
        EXPECT_EQ(image->size(), QSize(800, 600));
    }
}

TEST_F(ImageSourceTest, theContentGoesBeforeTheExtension)
{
    const QByteArray bytes = PictureFiles::jpeg(picture);
    for (const char *name : {"a.png", "a.dng", "a.heic", "a.tga", "a.icns", "a.fpx"}) {
        const auto image = thumbnailOf(QString::fromLatin1(name), bytes);
        ASSERT_TRUE(image) << name << qPrintable(reason);
        EXPECT_LT(difference(*image, picture), 3);
    }
}

TEST_F(ImageSourceTest, theLargestEntryOfAnIconIsTaken)
{
    const QByteArray png = PictureFiles::qtFile(PictureFiles::testPicture(128, 128), "png");
    const auto image = thumbnailOf(QStringLiteral("a.icns"), PictureFiles::icns(png));
    ASSERT_TRUE(image) << qPrintable(reason);
    EXPECT_EQ(image->size(), QSize(128, 128));
}

TEST_F(ImageSourceTest, transparencyComesPremultiplied)
{
    QImage clear(8, 8, QImage::Format_ARGB32);
    clear.fill(qRgba(255, 0, 0, 128));
    const auto image = thumbnailOf(QStringLiteral("a.png"), PictureFiles::qtFile(clear, "png"));
    ASSERT_TRUE(image) << qPrintable(reason);
    EXPECT_EQ(image->format(), QImage::Format_ARGB32_Premultiplied);
    const QRgb pixel = *reinterpret_cast<const QRgb *>(image->constScanLine(3));
    EXPECT_EQ(qAlpha(pixel), 128);
    EXPECT_EQ(qRed(pixel), 128);
}

TEST_F(ImageSourceTest, sixteenBitsAreReducedToEight)
{
    const QImage deep = picture.convertToFormat(QImage::Format_RGBX64);
    const auto image = thumbnailOf(QStringLiteral("a.png"), PictureFiles::qtFile(deep, "png"));
    ASSERT_TRUE(image) << qPrintable(reason);
    EXPECT_LT(difference(*image, picture), 1);
}

TEST_F(ImageSourceTest, aColourProfileIsTurnedToSrgb)
{
    QImage red(64, 64, QImage::Format_RGB32);
    red.fill(qRgb(200, 60, 60));
    const QByteArray bytes =
        PictureFiles::jpeg(red, {PictureFiles::JpegColour::ycc, false, 100, displayP3Profile()});
    const auto image = thumbnailOf(QStringLiteral("a.jpg"), bytes);
    ASSERT_TRUE(image) << qPrintable(reason);
    // The same numbers are a deeper red in the wider space.
    EXPECT_GT(qRed(image->pixel(32, 32)), 208);
    EXPECT_LT(qGreen(image->pixel(32, 32)), 55);
}

TEST_F(ImageSourceTest, aGreyJpegIsGrey)
{
    const QByteArray bytes = PictureFiles::jpeg(picture, {PictureFiles::JpegColour::gray, false, 95, {}});
    const auto image = thumbnailOf(QStringLiteral("a.jpg"), bytes);
    ASSERT_TRUE(image) << qPrintable(reason);
    for (const QPoint place : {QPoint(20, 20), QPoint(250, 30), QPoint(100, 150), QPoint(300, 190)}) {
        const QRgb pixel = image->pixel(place);
        EXPECT_NEAR(qRed(pixel), qGray(picture.pixel(place)), 6);
        EXPECT_EQ(qRed(pixel), qGreen(pixel));
        EXPECT_EQ(qRed(pixel), qBlue(pixel));
    }
}

TEST_F(ImageSourceTest, aStripOfOneByTenThousandKeepsAPixelAcross)
{
    for (const char *format : {"png", "jpg"}) {
        const auto image = thumbnailOf(QStringLiteral("a.") + QLatin1String(format),
                                       PictureFiles::qtFile(PictureFiles::testPicture(1, 10000), format));
        ASSERT_TRUE(image) << qPrintable(reason);
        EXPECT_EQ(image->size(), QSize(1, 800));
    }
}

TEST_F(ImageSourceTest, aHeaderThatClaimsTooMuchIsRefused)
{
    QByteArray png = PictureFiles::qtFile(picture, "png");
    png.replace(16, 8,
                QByteArray("\0\1\x86\xa0\0\1\x86\xa0", 8)); // 100 000 x 100 000, as its checksum doesn't say
    EXPECT_FALSE(thumbnailOf(QStringLiteral("a.png"), png));
    QByteArray jpeg = PictureFiles::jpeg(picture);
    const qsizetype frame = jpeg.indexOf("\xff\xc0");
    jpeg.replace(frame + 5, 4, "\xea\x60\xea\x60"); // 60 000 x 60 000
    EXPECT_FALSE(thumbnailOf(QStringLiteral("a.jpg"), jpeg));
    EXPECT_TRUE(reason.contains(QLatin1String("60000 x 60000 pixels are too many"))) << qPrintable(reason);
    QByteArray tga = PictureFiles::tga(picture);
    tga.replace(12, 4, "\xff\xff\xff\xff");
    EXPECT_FALSE(thumbnailOf(QStringLiteral("a.tga"), tga));
    QByteArray pic = PictureFiles::softimagePic(picture);
    pic.replace(92, 4, "\xff\xff\xff\xff");
    EXPECT_FALSE(thumbnailOf(QStringLiteral("a.pic"), pic));
}

TEST_F(ImageSourceTest, aJpegOfManyScansIsGivenUp)
{
    QByteArray bytes = PictureFiles::jpeg(picture, {PictureFiles::JpegColour::gray, true, 95, {}});
    const qsizetype scan = bytes.lastIndexOf("\xff\xda");
    const QByteArray last = bytes.mid(scan, bytes.size() - 2 - scan);
    bytes.chop(2);
    for (int i = 0; i < 2000; ++i)
        bytes.append(last);
    bytes.append("\xff\xd9");
    EXPECT_FALSE(thumbnailOf(QStringLiteral("a.jpg"), bytes));
    EXPECT_TRUE(reason.contains(QLatin1String("too many scans"))) << qPrintable(reason);
}

TEST_F(ImageSourceTest, halfAJpegShowsItsUpperHalf)
{
    const QByteArray bytes = PictureFiles::jpeg(PictureFiles::testPicture(1600, 1200));
    const auto image = thumbnailOf(QStringLiteral("a.jpg"), bytes.left(bytes.size() / 2));
    ASSERT_TRUE(image) << qPrintable(reason);
    EXPECT_EQ(image->size(), QSize(800, 600));
}

TEST_F(ImageSourceTest, aJpegWithoutPictureDataIsRefused)
{
    const QByteArray bytes = PictureFiles::jpeg(picture);
    EXPECT_FALSE(thumbnailOf(QStringLiteral("a.jpg"), bytes.left(bytes.indexOf("\xff\xda") + 14)));
    EXPECT_FALSE(reason.isEmpty());
}

TEST_F(ImageSourceTest, whatIsNoPictureIsRefusedWithAReason)
{
    EXPECT_FALSE(thumbnailOf(file(QStringLiteral("a.jpg"), {})));
    EXPECT_EQ(reason, QLatin1String("the file is empty"));
    EXPECT_FALSE(thumbnailOf(folder.filePath(QStringLiteral("missing.jpg"))));
    EXPECT_FALSE(reason.isEmpty());
    EXPECT_FALSE(
        thumbnailOf(QStringLiteral("a.png"), QByteArray("push graphic-context\nimage over 0,0 0,0 'x'", 42)));
    EXPECT_EQ(reason, QLatin1String("the content is of no known image format"));
    EXPECT_FALSE(
        thumbnailOf(QStringLiteral("a.fpx"), QByteArray("\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1 and more", 17)));
    EXPECT_TRUE(reason.startsWith(QLatin1String("FlashPix: "))) << qPrintable(reason);
}

TEST_F(ImageSourceTest, pipesAndFoldersAreRefusedWithoutWaiting)
{
    const QString pipe = folder.filePath(QStringLiteral("pipe.jpg"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_FALSE(thumbnailOf(pipe));
    EXPECT_EQ(reason, QLatin1String("not a regular file"));
    const QString inner = folder.filePath(QStringLiteral("folder.jpg"));
    ASSERT_TRUE(QDir().mkdir(inner));
    EXPECT_FALSE(thumbnailOf(inner));
    EXPECT_EQ(reason, QLatin1String("not a regular file"));
}

TEST_F(ImageSourceTest, namesThatLibrariesTakeForOptionsAreNames)
{
    const auto image =
        thumbnailOf(QStringLiteral("msl:a[page=7] %d 图.png"), PictureFiles::qtFile(picture, "png"));
    ASSERT_TRUE(image) << qPrintable(reason);
    EXPECT_EQ(image->size(), picture.size());
}

TEST_F(ImageSourceTest, orientationIsOneWhereTheFileSaysNothingValid)
{
    const QByteArray jpeg = PictureFiles::jpeg(picture);
    const auto orientationOf = [this](const QByteArray &bytes) {
        const auto source = ImageSource::open(file(QStringLiteral("a.jpg"), bytes));
        return source ? source->orientation() : -1;
    };
    EXPECT_EQ(orientationOf(jpeg), 1);
    for (int value = 1; value <= 8; ++value)
        EXPECT_EQ(orientationOf(PictureFiles::withExif(jpeg, {}, value)), value);
    EXPECT_EQ(orientationOf(PictureFiles::withExif(jpeg, {}, 0)), 1);
    EXPECT_EQ(orientationOf(PictureFiles::withExif(jpeg, {}, 9)), 1);
    EXPECT_EQ(orientationOf(PictureFiles::withExif(jpeg, {}, 65535)), 1);
}

TEST_F(ImageSourceTest, aRawFileIsUnrotatedHoweverItIsDecoded)
{
    const QImage large = PictureFiles::testPicture(640, 480);
    const QByteArray bytes = PictureFiles::dng(large, PictureFiles::jpeg(picture), picture.size(), 6);
    const auto source = ImageSource::open(file(QStringLiteral("a.dng"), bytes), &reason);
    ASSERT_TRUE(source) << qPrintable(reason);
    EXPECT_EQ(source->orientation(), 6);
    const auto preview = source->thumbnail(800, &reason);
    ASSERT_TRUE(preview) << qPrintable(reason);
    EXPECT_EQ(preview->size(), picture.size());
    const auto developed = source->fullImage(&reason);
    ASSERT_TRUE(developed) << qPrintable(reason);
    EXPECT_EQ(developed->size(), large.size());
    EXPECT_LT(qGray(developed->pixel(100, 100)), qGray(developed->pixel(500, 100)));
}

TEST_F(ImageSourceTest, aRawFileUnderATiffsNameIsStillRaw)
{
    const QByteArray bytes = PictureFiles::dng(picture, PictureFiles::jpeg(picture), picture.size(), 1);
    const auto source = ImageSource::open(file(QStringLiteral("a.tif"), bytes));
    ASSERT_TRUE(source);
    EXPECT_EQ(source->contentType(), ContentType::raw);
}

TEST_F(ImageSourceTest, aTiffUnderARawFilesNameIsStillDecoded)
{
    const auto image = thumbnailOf(QStringLiteral("a.nef"), PictureFiles::vipsFile(picture, ".tif"));
    ASSERT_TRUE(image) << qPrintable(reason);
    EXPECT_LT(difference(*image, picture), 1);
}

TEST_F(ImageSourceTest, theSmallestEmbeddedJpegThatCoversIsTakenFromAnX3f)
{
    const QList<QByteArray> jpegs = {PictureFiles::jpeg(PictureFiles::testPicture(160, 120)),
                                     PictureFiles::jpeg(PictureFiles::testPicture(2000, 1500)),
                                     PictureFiles::jpeg(PictureFiles::testPicture(1000, 500))};
    const auto source = ImageSource::open(file(QStringLiteral("a.x3f"), PictureFiles::x3f(jpegs, 90)));
    ASSERT_TRUE(source);
    const auto image = source->thumbnail(800);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), QSize(800, 400));
    const auto full = source->fullImage();
    ASSERT_TRUE(full);
    EXPECT_EQ(full->size(), QSize(2000, 1500));
    EXPECT_EQ(source->orientation(), 6);
}

TEST_F(ImageSourceTest, fourThreadsDecodeTheSameFilesAtOnce)
{
    const QStringList paths = {
        file(QStringLiteral("a.jpg"),
             PictureFiles::jpeg(picture, {PictureFiles::JpegColour::ycc, false, 95, displayP3Profile()})),
        file(QStringLiteral("a.png"), PictureFiles::qtFile(picture, "png")),
        file(QStringLiteral("a.dng"),
             PictureFiles::dng(picture, PictureFiles::jpeg(picture), picture.size(), 6)),
        file(QStringLiteral("a.psd"), PictureFiles::psd(picture)),
        file(QStringLiteral("a.jp2"), PictureFiles::vipsFile(picture, ".jp2")),
    };
    std::atomic_int decoded = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&paths, &decoded] {
            for (const QString &path : paths) {
                const auto source = ImageSource::open(path);
                if (source && source->thumbnail(100) && source->orientation() >= 1)
                    ++decoded;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(decoded, 4 * paths.size());
}

} // namespace Qorvane
