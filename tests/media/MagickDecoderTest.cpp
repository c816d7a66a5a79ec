#include "media/decoders/MagickDecoder.h"

#include "media/PictureFiles.h"
#include "media/decoders/ByteSource.h"
#include "media/decoders/DecoderDispatch.h"
#include "media/decoders/MediaLibraries.h"
#include "media/decoders/TiffDirectory.h"

#include <QDir>
#include <QtEndian>

#include <gtest/gtest.h>
#if __has_include(<MagickCore/MagickCore.h>)
#include <MagickCore/MagickCore.h>
#else
#include <magick/MagickCore.h>
#endif

#include <cstdlib>
#include <cstring>

using namespace Qorvane;

namespace {

/// The beginning of a PICT of the second version, with `instructions` and its end.
QByteArray pict(const QByteArray &instructions)
{
    QByteArray bytes(512, '\0');
    bytes.append(QByteArray("\0\0\0\0\0\0\0\x20\0\x30", 10)); // its size, and a frame of 48 x 32
    bytes.append(QByteArray("\0\x11\x02\xff\x0c\0\xff\xff\xff\xff", 10));
    bytes.append(QByteArray(20, '\0')); // the rest of the header
    return bytes + instructions + QByteArray("\0\xff", 2);
}

std::optional<QImage> decodedPict(const QByteArray &bytes, QString &reason)
{
    return decodeContent(MemoryBytes(bytes), ContentType::pict, DecodeRequest(), reason);
}

/// What ImageMagick itself makes of a TGA, asked without our own look at its size.
bool isDecodedByMagick(const QByteArray &tga, QByteArray &reason)
{
    ::ExceptionInfo *exception = ::AcquireExceptionInfo();
    ::ImageInfo *info = ::CloneImageInfo(nullptr);
    std::strcpy(info->magick, "TGA");
    std::strcpy(info->filename, "TGA:");
    ::Image *image = ::BlobToImage(info, tga.constData(), size_t(tga.size()), exception);
    reason = exception->reason;
    const bool isDecoded = image != nullptr;
    if (image)
        ::DestroyImageList(image);
    ::DestroyImageInfo(info);
    ::DestroyExceptionInfo(exception);
    return isDecoded;
}

} // namespace

TEST(MagickDecoderTest, APictThatOnlyDrawsIsRefused)
{
    QByteArray drawing;
    drawing.append(QByteArray("\0\x01\0\x0a\0\0\0\0\0\x20\0\x30", 12));         // clip to all
    drawing.append(QByteArray("\0\x07\0\x02\0\x02", 6));                        // a pen of two pixels
    drawing.append(QByteArray("\0\x31\0\x04\0\x04\0\x10\0\x10", 10));           // a painted rectangle
    drawing.append(QByteArray("\0\x39", 2));                                    // and again
    drawing.append(QByteArray("\0\xa1\0\x64\0\x03xyz\0", 10));                  // a comment
    drawing.append(QByteArray("\0\x28\0\x14\0\x05\x04text\0", 12));             // a text
    drawing.append(QByteArray("\0\x71\0\x0e\0\0\0\0\0\x09\0\x09\0\0\0\0", 16)); // a polygon
    QString reason;
    EXPECT_FALSE(decodedPict(pict(drawing), reason));
    EXPECT_EQ(reason, QStringLiteral("it holds a drawing and no bitmap, and drawings are not rendered"));
}

TEST(MagickDecoderTest, APictOfTheFirstVersionThatOnlyDrawsIsRefused)
{
    QByteArray bytes(512, '\0');
    bytes.append(QByteArray("\0\0\0\0\0\0\0\x20\0\x30\x11\x01", 12));
    bytes.append(QByteArray("\x31\0\x04\0\x04\0\x10\0\x10\xff", 10));
    QString reason;
    EXPECT_FALSE(decodedPict(bytes, reason));
    EXPECT_EQ(reason, QStringLiteral("it holds a drawing and no bitmap, and drawings are not rendered"));
}

TEST(MagickDecoderTest, ATiffHoldsItsDataOrNot)
{
    for (const char *kind : {".tif", ".tif[tile,tile_width=16,tile_height=16]"}) {
        QByteArray tiff = PictureFiles::vipsFile(PictureFiles::testPicture(64, 48), kind);
        EXPECT_TRUE(TiffDirectory::holdsItsData(MemoryBytes(tiff)));
        // The directory moves to the front of a file that has lost its end.
        const quint32 directory = qFromLittleEndian<quint32>(tiff.constData() + 4);
        const QByteArray entries = tiff.mid(directory, 2 + 12 * uchar(tiff[directory]) + 4);
        QByteArray cut = tiff.left(100);
        qToLittleEndian<quint32>(100, cut.data() + 4);
        EXPECT_FALSE(TiffDirectory::holdsItsData(MemoryBytes(cut + entries)));
    }
    EXPECT_FALSE(TiffDirectory::holdsItsData(MemoryBytes(QByteArray("II*\0\x08\0\0\0\0\0", 10))));
}

TEST(MagickDecoderTest, NoTemporaryFileTakesWhatDoesNotFitIntoMemory)
{
    const QTemporaryDir temporary;
    qputenv("MAGICK_TEMPORARY_PATH", QFile::encodeName(temporary.path()));
    MediaLibraries::ensureReady();
    EXPECT_EQ(::GetMagickResourceLimit(DiskResource), 0U);
    EXPECT_EQ(::GetMagickResourceLimit(MapResource), 0U);
    EXPECT_EQ(::GetMagickResourceLimit(ThreadResource), 1U);
    EXPECT_LE(::GetMagickResourceLimit(MemoryResource), MagickSizeType(DecodeLimits::maximumMemory));
    EXPECT_LE(::GetMagickResourceLimit(WidthResource), 65'535U);
    EXPECT_LE(::GetMagickResourceLimit(HeightResource), 65'535U);

    const QByteArray tga = PictureFiles::tga(PictureFiles::testPicture(600, 400));
    QByteArray magicksReason;
    EXPECT_TRUE(isDecodedByMagick(tga, magicksReason));
    ::SetMagickResourceLimit(MemoryResource, 1 << 20);
    EXPECT_FALSE(isDecodedByMagick(tga, magicksReason));
    EXPECT_TRUE(magicksReason.startsWith("cache resources exhausted")) << magicksReason.constData();
    QString reason;
    EXPECT_FALSE(decodeWithMagick(MemoryBytes(tga), "TGA", DecodeRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("600 x 400 pixels are too many"));
    EXPECT_TRUE(QDir(temporary.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    ::SetMagickResourceLimit(MemoryResource, MagickSizeType(DecodeLimits::maximumMemory));
    EXPECT_TRUE(decodeWithMagick(MemoryBytes(tga), "TGA", DecodeRequest(), reason)) << qPrintable(reason);
}
