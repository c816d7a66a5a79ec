#include "media/decoders/JpegReader.h"

#include "media/PictureFiles.h"
#include "media/decoders/DecodeLimits.h"

#include <gtest/gtest.h>
#include <malloc.h>

namespace Qorvane {

namespace {

class JpegReaderTest : public testing::Test
{
protected:
    /// A small picture with `segments` behind its start.
    static QByteArray jpegWith(const QByteArray &segments)
    {
        return PictureFiles::jpeg(PictureFiles::testPicture(32, 32)).insert(2, segments);
    }
    /// A segment of application data as it stands in a JPEG.
    static QByteArray segment(char marker, const QByteArray &data)
    {
        const auto length = quint16(data.size() + 2);
        return QByteArray("\xff", 1) + marker + char(length >> 8) + char(length & 0xff) + data;
    }
    static QByteArray exif(const QByteArray &data)
    {
        return segment('\xe1', QByteArray("Exif\0\0", 6) + data);
    }
    static QByteArray iccPart(int number, int count, const QByteArray &data)
    {
        return segment('\xe2', QByteArray("ICC_PROFILE\0", 12) + char(number) + char(count) + data);
    }
    static QByteArray iccProfileOf(const QByteArray &segments)
    {
        const MemoryBytes bytes(jpegWith(segments));
        const QDeadlineTimer deadline(DecodeLimits::maximumTime);
        JpegReader reader(bytes, deadline);
        EXPECT_TRUE(reader.readHeader()) << qPrintable(reader.reason());
        return reader.iccProfile();
    }
};

} // namespace

TEST_F(JpegReaderTest, keepsTheFirstExifBlock)
{
    const MemoryBytes bytes(jpegWith(segment('\xe1', "http://ns.adobe.com/xap/1.0/") + exif("first") +
                                     segment('\xe1', "Exif") + exif("second")));
    const QDeadlineTimer deadline(DecodeLimits::maximumTime);
    JpegReader reader(bytes, deadline);
    ASSERT_TRUE(reader.readHeader()) << qPrintable(reader.reason());
    EXPECT_EQ(reader.exifBlock(), "first");
    EXPECT_EQ(reader.size(), QSize(32, 32));
}

TEST_F(JpegReaderTest, putsTheColourProfileTogetherByItsNumbers)
{
    const QByteArray long1(65'519, 'a'); // as much as a segment holds
    EXPECT_EQ(iccProfileOf(iccPart(2, 2, "end") + iccPart(1, 2, long1)), long1 + "end");
    EXPECT_EQ(iccProfileOf(iccPart(1, 1, "one") + iccPart(1, 1, "another")), "one");
}

TEST_F(JpegReaderTest, givesNoColourProfileWhenAPartIsMissingOrWrong)
{
    EXPECT_TRUE(iccProfileOf({}).isEmpty());
    EXPECT_TRUE(iccProfileOf(iccPart(1, 2, "half")).isEmpty());
    EXPECT_TRUE(iccProfileOf(iccPart(1, 2, "a") + iccPart(2, 3, "b")).isEmpty());
    EXPECT_TRUE(iccProfileOf(iccPart(0, 1, "none")).isEmpty());
    EXPECT_TRUE(iccProfileOf(segment('\xe2', "MPF")).isEmpty());
    EXPECT_TRUE(iccProfileOf(segment('\xe2', {})).isEmpty());
}

TEST_F(JpegReaderTest, keepsNothingOfSegmentsThatAreOfNoUse)
{
    const QByteArray useless = segment('\xe1', QByteArray(65'000, 'x')) + exif(QByteArray(65'000, 'y')) +
                               iccPart(1, 2, QByteArray(65'000, 'z'));
    const MemoryBytes bytes(jpegWith(useless.repeated(200)));
    const QDeadlineTimer deadline(DecodeLimits::maximumTime);
    JpegReader reader(bytes, deadline);
    const auto inUse = [] {
        const struct mallinfo2 memory = mallinfo2();
        return memory.uordblks + memory.hblkhd;
    };
    const size_t before = inUse();
    ASSERT_TRUE(reader.readHeader()) << qPrintable(reader.reason());
    EXPECT_LT(inUse(), before + (1 << 20));
}

} // namespace Qorvane
