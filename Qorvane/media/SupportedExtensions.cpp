#include "media/SupportedExtensions.h"

#include "platform/FileUrl.h"

#include <memory>

namespace Qorvane {

namespace {

// Never taken down: work in the background may still ask when static objects go.
const QSet<QString> &lasting(const QSet<QString> &extensions)
{
    return *std::make_unique<const QSet<QString>>(extensions).release();
}

} // namespace

const QSet<QString> &supportedImageExtensions()
{
    static const QSet<QString> &extensions = lasting({
        QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("png"),  QStringLiteral("gif"),
        QStringLiteral("webp"), QStringLiteral("tiff"), QStringLiteral("tif"),  QStringLiteral("heic"),
        QStringLiteral("heif"), QStringLiteral("cr3"),  QStringLiteral("cr2"),  QStringLiteral("crw"),
        QStringLiteral("nef"),  QStringLiteral("nrw"),  QStringLiteral("arw"),  QStringLiteral("srf"),
        QStringLiteral("sr2"),  QStringLiteral("dng"),  QStringLiteral("raf"),  QStringLiteral("orf"),
        QStringLiteral("rw2"),  QStringLiteral("raw"),  QStringLiteral("srw"),  QStringLiteral("pef"),
        QStringLiteral("ptx"),  QStringLiteral("rwl"),  QStringLiteral("dcs"),  QStringLiteral("dcr"),
        QStringLiteral("k25"),  QStringLiteral("kdc"),  QStringLiteral("mrw"),  QStringLiteral("x3f"),
        QStringLiteral("erf"),  QStringLiteral("mef"),  QStringLiteral("iiq"),  QStringLiteral("bmp"),
        QStringLiteral("dib"),  QStringLiteral("icns"), QStringLiteral("psd"),  QStringLiteral("psb"),
        QStringLiteral("ico"),  QStringLiteral("cur"),  QStringLiteral("xbm"),  QStringLiteral("jp2"),
        QStringLiteral("jpx"),  QStringLiteral("fpx"),  QStringLiteral("pict"), QStringLiteral("pic"),
        QStringLiteral("qtif"), QStringLiteral("sgi"),  QStringLiteral("tga"),  QStringLiteral("pnm"),
        QStringLiteral("pbm"),  QStringLiteral("pgm"),  QStringLiteral("ppm"),  QStringLiteral("hdr"),
    });
    return extensions;
}

const QSet<QString> &supportedVideoExtensions()
{
    static const QSet<QString> &extensions = lasting({
        QStringLiteral("mp4"),  QStringLiteral("m4v"),  QStringLiteral("mov"),  QStringLiteral("avi"),
        QStringLiteral("mkv"),  QStringLiteral("wmv"),  QStringLiteral("flv"),  QStringLiteral("webm"),
        QStringLiteral("hevc"), QStringLiteral("h265"), QStringLiteral("qt"),   QStringLiteral("f4v"),
        QStringLiteral("asf"),  QStringLiteral("ogv"),  QStringLiteral("3gp"),  QStringLiteral("3g2"),
        QStringLiteral("mxf"),  QStringLiteral("r3d"),  QStringLiteral("braw"),
    });
    return extensions;
}

bool isMediaFile(const FileUrl &file)
{
    const QString extension = file.pathExtension().toLower();
    return supportedImageExtensions().contains(extension) || supportedVideoExtensions().contains(extension);
}

bool isVideoFile(const FileUrl &file)
{
    return supportedVideoExtensions().contains(file.pathExtension().toLower());
}

} // namespace Qorvane
