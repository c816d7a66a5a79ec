#include "media/decoders/MagickDecoder.h"

#include "media/PictureFiles.h"
#include "media/decoders/ByteSource.h"
#include "media/decoders/MediaLibraries.h"

#include <QDir>

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
