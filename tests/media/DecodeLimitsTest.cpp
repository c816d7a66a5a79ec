#include "media/decoders/DecodeLimits.h"

#include "media/CountedBytes.h"
#include "media/PictureFiles.h"
#include "media/decoders/DecoderDispatch.h"
#include "media/decoders/HeifDecoder.h"
#include "media/decoders/Jpeg2000Decoder.h"
#include "media/decoders/JpegDecoder.h"
#include "media/decoders/QtDecoder.h"
#include "media/decoders/SoftimagePic.h"
#include "media/decoders/X3fDecoder.h"

#include <QtEndian>

#include <gtest/gtest.h>

namespace Qorvane {

namespace {

DecodeRequest lateRequest()
{
    DecodeRequest request;
    request.deadline = QDeadlineTimer(0);
    return request;
}

/// A segment of application data as it stands in a JPEG.
QByteArray segment(char marker, const QByteArray &data)
{
    const auto length = quint16(data.size() + 2);
    return QByteArray("\xff", 1) + marker + char(length >> 8) + char(length & 0xff) + data;
}

constexpr char exifMarker = '\xe1';

/// `jpegBytes` with `segments` behind their start.
QByteArray withSegments(QByteArray jpegBytes, const QByteArray &segments)
{
    return jpegBytes.insert(2, segments);
}

/// Comments that each hold what looks like the start of another JPEG.
QByteArray chainOfStarts(int count)
{
    return QByteArray("FOVb", 4) + QByteArray(60, '\0') +
           QByteArray("\xff\xfe\x00\x05\xff\xd8\xff", 7).repeated(count);
}

} // namespace

TEST(DecodeLimits, aChainOfJpegStartsIsNotWalkedFromEachOfThem)
{
    const CountedBytes bytes(chainOfStarts(20'000));
    QString reason;
    EXPECT_FALSE(decodeX3f(bytes, DecodeRequest(), reason));
    EXPECT_LT(bytes.readCount(), 200 * bytes.size());
    EXPECT_FALSE(reason.isEmpty());
}

TEST(DecodeLimits, theSearchForEmbeddedJpegsEndsWithTheDeadline)
{
    const CountedBytes bytes(chainOfStarts(20'000));
    QString reason;
    EXPECT_FALSE(decodeX3f(bytes, lateRequest(), reason));
    EXPECT_LE(bytes.readCount(), bytes.size());
}

TEST(DecodeLimits, aJpegHeaderIsNotReadBeyondTheDeadline)
{
    const CountedBytes bytes(PictureFiles::jpeg(PictureFiles::testPicture(32, 32)));
    QString reason;
    EXPECT_FALSE(jpegSize(bytes, QDeadlineTimer(0)));
    EXPECT_FALSE(decodeJpeg(bytes, lateRequest(), JpegTolerance::cutPictures, reason));
    EXPECT_EQ(reason, QStringLiteral("decoding took too long"));
    EXPECT_EQ(bytes.readCount(), 0);
}

TEST(DecodeLimits, aJpegHeaderThatIsTooLongIsGivenUp)
{
    const QByteArray large = segment(exifMarker, QByteArray(65'000, 'x'));
    const CountedBytes bytes(
        withSegments(PictureFiles::jpeg(PictureFiles::testPicture(32, 32)), large.repeated(1500)));
    QString reason;
    EXPECT_FALSE(decodeJpeg(bytes, DecodeRequest(), JpegTolerance::cutPictures, reason));
    EXPECT_EQ(reason, QStringLiteral("the JPEG's header is too long"));
    EXPECT_LT(bytes.readCount(), 70 << 20);
}

TEST(DecodeLimits, aJpegInsideAnX3fMayHaveALongHeader)
{
    const QByteArray large = segment(exifMarker, QByteArray(65'000, 'x'));
    const QByteArray jpeg =
        withSegments(PictureFiles::jpeg(PictureFiles::testPicture(32, 32)), large.repeated(100));
    QString reason;
    EXPECT_TRUE(decodeX3f(MemoryBytes(PictureFiles::x3f({jpeg}, 0)), DecodeRequest(), reason))
        << qPrintable(reason);
}

TEST(DecodeLimits, aJpeg2000OfManyChannelsIsRefusedByItsHeader)
{
    QByteArray codestream = PictureFiles::vipsFile(PictureFiles::testPicture(64, 64), ".jp2");
    codestream = codestream.mid(codestream.indexOf("\xff\x4f\xff\x51"));
    QString reason;
    ASSERT_TRUE(decodeJpeg2000(MemoryBytes(codestream), DecodeRequest(), reason)) << qPrintable(reason);

    // The segment of sizes: its length, 34 bytes of sizes, the count of channels, three bytes for each.
    constexpr qsizetype lengthAt = 4;
    constexpr qsizetype countAt = 40;
    constexpr int channels = 1000;
    qToBigEndian(quint16(38 + 3 * channels), codestream.data() + lengthAt);
    qToBigEndian(quint16(channels), codestream.data() + countAt);
    codestream.insert(countAt + 2, QByteArray("\x07\x01\x01", 3).repeated(channels - 3));
    EXPECT_FALSE(decodeJpeg2000(MemoryBytes(codestream), DecodeRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("1000 channels are too many"));
}

TEST(DecodeLimits, aSoftimagePictureIsNotReadBeyondTheDeadline)
{
    const CountedBytes bytes(PictureFiles::softimagePic(PictureFiles::testPicture(400, 400)));
    QString reason;
    EXPECT_FALSE(decodeSoftimagePic(bytes, lateRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("decoding took too long"));
    EXPECT_LT(bytes.readCount(), bytes.size() / 2);
}

TEST(DecodeLimits, aSoftimagePictureLeavesMemoryForItsReduction)
{
    QByteArray pic = PictureFiles::softimagePic(PictureFiles::testPicture(8, 8));
    qToBigEndian(quint16(16'000), pic.data() + 92);
    qToBigEndian(quint16(16'000), pic.data() + 94);
    QString reason;
    EXPECT_FALSE(decodeSoftimagePic(MemoryBytes(pic), DecodeRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("16000 x 16000 pixels are too many"));
}

TEST(DecodeLimits, decodersThatCannotBeStoppedGetNothingMoreToReadAfterTheDeadline)
{
    const QImage picture = PictureFiles::testPicture(300, 300);
    QString reason;
    const CountedBytes bmp(PictureFiles::qtFile(picture, "bmp"));
    EXPECT_FALSE(decodeWithQt(bmp, "bmp", lateRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("decoding took too long"));
    EXPECT_EQ(bmp.readCount(), 0);
    const CountedBytes heif(PictureFiles::vipsFile(picture, ".avif"));
    EXPECT_FALSE(decodeHeif(heif, lateRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("decoding took too long"));
    EXPECT_EQ(heif.readCount(), 0);
    const CountedBytes jp2(PictureFiles::vipsFile(picture, ".jp2"));
    EXPECT_FALSE(decodeJpeg2000(jp2, lateRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("decoding took too long"));
    EXPECT_LE(jp2.readCount(), 1); // which of the two containers it is
}

TEST(DecodeLimits, aGifCountsAsOftenAsItsCanvasIsHeld)
{
    QByteArray gif = PictureFiles::vipsFile(PictureFiles::testPicture(300, 300), ".gif");
    QString reason;
    ASSERT_TRUE(decodeContent(MemoryBytes(gif), ContentType::gif, DecodeRequest(), reason));
    const qsizetype frame = gif.indexOf(QByteArray(",\0\0\0\0\x2c\x01\x2c\x01", 9));
    ASSERT_GT(frame, 0);
    const QByteArray side = QByteArray("\x10\x27\x10\x27", 4); // 10 000 each way
    gif.replace(6, 4, side);
    gif.replace(frame + 5, 4, side);
    EXPECT_FALSE(decodeContent(MemoryBytes(gif), ContentType::gif, DecodeRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("its pixels take too much memory"));
}

TEST(DecodeLimits, aWebPCountsWithWhatItsDecoderHolds)
{
    QByteArray webP = PictureFiles::vipsFile(PictureFiles::testPicture(300, 300), ".webp[lossless]");
    QString reason;
    ASSERT_TRUE(decodeContent(MemoryBytes(webP), ContentType::webp, DecodeRequest(), reason));
    // 16 000 each way: three bytes each for the canvas, 14 bits each behind the mark of a lossless picture.
    constexpr quint32 side = 15'999;
    const qsizetype canvas = webP.indexOf("VP8X") + 12;
    const qsizetype frame = webP.indexOf("VP8L") + 9;
    ASSERT_EQ(webP[frame - 1], '\x2f');
    ASSERT_EQ(canvas, 24);
    webP.replace(canvas, 6, QByteArray("\x7f\x3e\0\x7f\x3e\0", 6));
    const quint32 bits = qFromLittleEndian<quint32>(webP.constData() + frame);
    qToLittleEndian<quint32>((bits & 0xf0000000) | side << 14 | side, webP.data() + frame);
    EXPECT_FALSE(decodeContent(MemoryBytes(webP), ContentType::webp, DecodeRequest(), reason));
    EXPECT_EQ(reason, QStringLiteral("its pixels take too much memory"));
}

} // namespace Qorvane
