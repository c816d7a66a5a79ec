#include "media/ContentType.h"

#include "media/decoders/ByteSource.h"
#include "media/decoders/TiffDirectory.h"

#include <QSet>

#include <algorithm>
#include <string_view>

namespace Qorvane {

namespace {

using std::string_view_literals::operator""sv;

// Enough for the marks of every kind; a PICT's stand behind 512 bytes of anything.
constexpr qint64 headSize = 1024;
constexpr qsizetype pictMarkOffset = 522;

bool hasAt(const QByteArray &head, qsizetype offset, std::string_view mark)
{
    return head.size() >= offset + qsizetype(mark.size()) &&
           std::equal(mark.begin(), mark.end(), head.constData() + offset);
}

/// Whether the marks of a TIFF, in either byte order, small or big, begin the file.
bool hasTiffHeader(const QByteArray &head)
{
    return hasAt(head, 0, "II*\0"sv) || hasAt(head, 0, "MM\0*"sv) || hasAt(head, 0, "II+\0"sv) ||
           hasAt(head, 0, "MM\0+"sv);
}

bool isRawExtension(const QString &extension)
{
    static const QSet<QString> extensions = {
        QStringLiteral("cr3"), QStringLiteral("cr2"), QStringLiteral("crw"), QStringLiteral("nef"),
        QStringLiteral("nrw"), QStringLiteral("arw"), QStringLiteral("srf"), QStringLiteral("sr2"),
        QStringLiteral("dng"), QStringLiteral("raf"), QStringLiteral("orf"), QStringLiteral("rw2"),
        QStringLiteral("raw"), QStringLiteral("srw"), QStringLiteral("pef"), QStringLiteral("ptx"),
        QStringLiteral("rwl"), QStringLiteral("dcs"), QStringLiteral("dcr"), QStringLiteral("k25"),
        QStringLiteral("kdc"), QStringLiteral("mrw"), QStringLiteral("erf"), QStringLiteral("mef"),
        QStringLiteral("iiq"),
    };
    return extensions.contains(extension);
}

/// The makers' own containers, and TIFFs marked as theirs in the first bytes.
bool hasRawMark(const QByteArray &head)
{
    return hasAt(head, 0, "FUJIFILMCCD-RAW"sv) || hasAt(head, 0, "\0MRM"sv) || hasAt(head, 6, "HEAPCCDR"sv) ||
           hasAt(head, 0, "IIU\0"sv) || hasAt(head, 0, "IIRO"sv) || hasAt(head, 0, "IIRS"sv) ||
           hasAt(head, 0, "MMOR"sv) || hasAt(head, 4, "ftypcrx "sv) ||
           (hasTiffHeader(head) &&
            (hasAt(head, 8, "CR\2"sv) || hasAt(head, 8, "IIII"sv) || hasAt(head, 8, "MMMMRaw"sv)));
}

bool isHeifBrand(const QByteArray &brand)
{
    static const QSet<QByteArray> brands = {"heic", "heix", "heim", "heis", "hevc", "hevx", "hevm", "hevs",
                                            "mif1", "mif2", "msf1", "avif", "avis", "miaf", "avci"};
    return brands.contains(brand);
}

/// The major brand may be a maker's own; the compatible ones, of which the box has at most a few dozen, then
/// tell.
bool isHeif(const QByteArray &head)
{
    if (!hasAt(head, 4, "ftyp"sv))
        return false;
    const auto *bytes = reinterpret_cast<const uchar *>(head.constData());
    const qsizetype boxSize = qsizetype(bytes[0]) << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3];
    const qsizetype end = qMin(boxSize, head.size());
    if (isHeifBrand(head.mid(8, 4)))
        return true;
    for (qsizetype offset = 16; offset + 4 <= end; offset += 4) {
        if (isHeifBrand(head.mid(offset, 4)))
            return true;
    }
    return false;
}

/// "P1" to "P6" or a floating-point "PF", "Pf", then a blank or a comment.
bool isPnm(const QByteArray &head)
{
    if (head.size() < 3 || head[0] != 'P')
        return false;
    const bool isKnown = (head[1] >= '1' && head[1] <= '6') || head[1] == 'F' || head[1] == 'f';
    return isKnown && (std::string_view(" \t\r\n#").find(head[2]) != std::string_view::npos);
}

/// An icon directory has between one and some hundreds of entries, and each leaves its fourth byte zero or
/// nearly.
bool isIconDirectory(const QByteArray &head, char kind)
{
    return hasAt(head, 0, "\0\0"sv) && head.size() > 22 && head[2] == kind && head[3] == 0 &&
           (head[4] != 0 || head[5] != 0);
}

bool isPict(const QByteArray &head)
{
    return hasAt(head, pictMarkOffset, "\0\x11\x02\xff"sv) || hasAt(head, pictMarkOffset, "\x11\x01"sv);
}

bool isQuickTimeImage(const QByteArray &head)
{
    return hasAt(head, 4, "idsc"sv) || hasAt(head, 4, "idat"sv) || hasAt(head, 4, "iicc"sv);
}

bool isWebP(const QByteArray &head)
{
    return hasAt(head, 0, "RIFF"sv) && hasAt(head, 8, "WEBP"sv);
}

bool isJpeg2000(const QByteArray &head)
{
    return hasAt(head, 0, "\0\0\0\x0cjP  \r\n\x87\n"sv) || hasAt(head, 0, "\xff\x4f\xff\x51"sv);
}

/// BMP's two letters begin much else; its header's size field and plane count make it sure.
bool isBmp(const QByteArray &head)
{
    return hasAt(head, 0, "BM"sv) && head.size() > 18 && head[14] >= 12 && head[14] <= 124 && head[15] == 0 &&
           head[16] == 0;
}

std::optional<ContentType> typeByMark(const QByteArray &head)
{
    if (hasAt(head, 0, "\xff\xd8\xff"sv))
        return ContentType::jpeg;
    if (hasAt(head, 0, "\x89PNG\r\n\x1a\n"sv))
        return ContentType::png;
    if (hasAt(head, 0, "GIF87a"sv) || hasAt(head, 0, "GIF89a"sv))
        return ContentType::gif;
    if (isWebP(head))
        return ContentType::webp;
    if (hasAt(head, 0, "FOVb"sv))
        return ContentType::x3f;
    if (hasRawMark(head))
        return ContentType::raw;
    if (isHeif(head))
        return ContentType::heif;
    if (isBmp(head))
        return ContentType::bmp;
    if (hasAt(head, 0, "icns"sv))
        return ContentType::icns;
    if (hasAt(head, 0, "8BPS"sv))
        return ContentType::psd;
    if (isJpeg2000(head))
        return ContentType::jpeg2000;
    if (hasAt(head, 0, "\x53\x80\xf6\x34"sv))
        return ContentType::softimagePic;
    if (hasAt(head, 0, "\x01\xda"sv))
        return ContentType::sgi;
    if (isPnm(head))
        return ContentType::pnm;
    if (hasAt(head, 0, "#?RADIANCE"sv) || hasAt(head, 0, "#?RGBE"sv))
        return ContentType::radianceHdr;
    if (hasAt(head, 0, "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"sv))
        return ContentType::flashPix;
    if (isQuickTimeImage(head))
        return ContentType::qtif;
    return std::nullopt;
}

/// Kinds that begin with nothing of their own, or with next to nothing. The name has to claim them.
std::optional<ContentType> typeByExtension(const QByteArray &head, const QString &extension)
{
    if (extension == QLatin1String("tga"))
        return ContentType::tga;
    if (extension == QLatin1String("ico") && isIconDirectory(head, 1))
        return ContentType::ico;
    if (extension == QLatin1String("cur") && (isIconDirectory(head, 2) || isIconDirectory(head, 1)))
        return ContentType::cur;
    // A bitmap's information header begins with its own size: 12, 40, 52, 56, 64, 108 or 124.
    if (extension == QLatin1String("dib") && head.size() > 12 && head[0] >= 12 && head[1] == 0 &&
        head[2] == 0)
        return ContentType::dib;
    if ((extension == QLatin1String("pict") || extension == QLatin1String("pic")) && isPict(head))
        return ContentType::pict;
    if (extension == QLatin1String("xbm"))
        return ContentType::xbm;
    if (isRawExtension(extension))
        return ContentType::raw;
    return std::nullopt;
}

/// What is left: marks too weak to stand against an extension, but better than nothing.
std::optional<ContentType> typeByWeakMark(const QByteArray &head)
{
    if (isIconDirectory(head, 1))
        return ContentType::ico;
    if (isIconDirectory(head, 2))
        return ContentType::cur;
    if (isPict(head))
        return ContentType::pict;
    if (head.startsWith("#define ") && head.contains("_width "))
        return ContentType::xbm;
    return std::nullopt;
}

} // namespace

std::optional<ContentType> contentType(const ByteSource &bytes, const QString &extension)
{
    const QByteArray head = bytes.bytes(0, headSize);
    if (const auto type = typeByMark(head))
        return type;
    if (hasTiffHeader(head)) {
        // A raw file in a TIFF's clothes would come out as its preview, or as noise.
        const bool isRaw = isRawExtension(extension) || TiffDirectory::describesRawFile(bytes);
        return isRaw ? ContentType::raw : ContentType::tiff;
    }
    if (const auto type = typeByExtension(head, extension))
        return type;
    return typeByWeakMark(head);
}

QString contentTypeName(ContentType type)
{
    switch (type) {
    case ContentType::jpeg:
        return QStringLiteral("JPEG");
    case ContentType::png:
        return QStringLiteral("PNG");
    case ContentType::gif:
        return QStringLiteral("GIF");
    case ContentType::webp:
        return QStringLiteral("WebP");
    case ContentType::tiff:
        return QStringLiteral("TIFF");
    case ContentType::raw:
        return QStringLiteral("camera raw");
    case ContentType::x3f:
        return QStringLiteral("X3F");
    case ContentType::heif:
        return QStringLiteral("HEIF");
    case ContentType::bmp:
        return QStringLiteral("BMP");
    case ContentType::dib:
        return QStringLiteral("DIB");
    case ContentType::icns:
        return QStringLiteral("ICNS");
    case ContentType::ico:
        return QStringLiteral("ICO");
    case ContentType::cur:
        return QStringLiteral("CUR");
    case ContentType::psd:
        return QStringLiteral("PSD");
    case ContentType::xbm:
        return QStringLiteral("XBM");
    case ContentType::jpeg2000:
        return QStringLiteral("JPEG 2000");
    case ContentType::pict:
        return QStringLiteral("PICT");
    case ContentType::softimagePic:
        return QStringLiteral("Softimage PIC");
    case ContentType::qtif:
        return QStringLiteral("QTIF");
    case ContentType::sgi:
        return QStringLiteral("SGI");
    case ContentType::tga:
        return QStringLiteral("TGA");
    case ContentType::pnm:
        return QStringLiteral("PNM");
    case ContentType::radianceHdr:
        return QStringLiteral("Radiance HDR");
    case ContentType::flashPix:
        return QStringLiteral("FlashPix");
    }
    return {};
}

} // namespace Qorvane
