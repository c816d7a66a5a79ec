#include "media/decoders/RawDecoder.h"

#include "media/decoders/ColorTransform.h"
#include "media/decoders/InputFile.h"
#include "media/decoders/JpegDecoder.h"
#include "media/decoders/PixelScaler.h"
#include "media/decoders/RawPreviews.h"

#include <QColorSpace>

#include <libraw/libraw.h>

#include <memory>

namespace Qorvane {

namespace {

struct FreeProcessed
{
    void operator()(libraw_processed_image_t *image) const { LibRaw::dcraw_clear_mem(image); }
};
using Processed = std::unique_ptr<libraw_processed_image_t, FreeProcessed>;

int stopWhenLate(void *data, LibRaw_progress, int, int)
{
    return static_cast<const QDeadlineTimer *>(data)->hasExpired() ? 1 : 0;
}

void setMemoryLimit(LibRaw &raw)
{
    constexpr unsigned megabytes = unsigned(DecodeLimits::maximumMemory >> 20);
#if LIBRAW_COMPILE_CHECK_VERSION_NOTLESS(0, 21)
    raw.imgdata.rawparams.max_raw_memory_mb = megabytes;
#else
    raw.imgdata.params.max_raw_memory_mb = megabytes;
#endif
}

QString libRawReason(int error)
{
    return error == LIBRAW_CANCELLED_BY_CALLBACK ? QStringLiteral("decoding took too long")
                                                 : QString::fromLatin1(LibRaw::strerror(error));
}

/// LibRaw on one file. The object is some hundred kilobytes large, hence on the heap.
class RawFile
{
public:
    explicit RawFile(const QDeadlineTimer &deadline)
        : m_raw(std::make_unique<LibRaw>(0U))
    {
        m_raw->set_progress_handler(stopWhenLate, const_cast<QDeadlineTimer *>(&deadline));
        m_raw->set_dataerror_handler(nullptr, nullptr); // the library's own writes to the terminal
        setMemoryLimit(*m_raw);
    }

    bool open(const InputFile &file, QString &reason)
    {
        if (const int error = m_raw->open_file(file.nativePath().constData()); error != LIBRAW_SUCCESS) {
            reason = libRawReason(error);
            return false;
        }
        return true;
    }

    int flip() const { return m_raw->imgdata.sizes.flip; }
    std::optional<QImage> thumbnail(const DecodeRequest &request);
    std::optional<QImage> developed(const DecodeRequest &request, QString &reason);

private:
    std::optional<QImage> process(const DecodeRequest &request, bool isHalfSize, QString &reason);

    std::unique_ptr<LibRaw> m_raw;
};

std::optional<QImage> RawFile::thumbnail(const DecodeRequest &request)
{
    if (m_raw->unpack_thumb() != LIBRAW_SUCCESS)
        return std::nullopt;
    const libraw_thumbnail_t &thumb = m_raw->imgdata.thumbnail;
    if (!thumb.thumb || thumb.tlength == 0)
        return std::nullopt;
    const QByteArray bytes(thumb.thumb, qsizetype(thumb.tlength));
    if (thumb.tformat == LIBRAW_THUMBNAIL_JPEG) {
        DecodeRequest inner = request;
        inner.isPreviewAllowed = false;
        QString unused;
        return decodeJpeg(MemoryBytes(bytes), inner, JpegTolerance::none, unused);
    }
    const qsizetype rowSize = qsizetype(thumb.twidth) * 3;
    if (thumb.tformat != LIBRAW_THUMBNAIL_BITMAP || thumb.tcolors != 3 || thumb.theight == 0 ||
        bytes.size() < rowSize * thumb.theight)
        return std::nullopt;
    const QImage image(reinterpret_cast<const uchar *>(bytes.constData()), thumb.twidth, thumb.theight,
                       rowSize, QImage::Format_RGB888);
    QImage bounded = scaledImage(image, request.boundedSize(image.size()));
    bounded.setColorSpace(QColorSpace(QColorSpace::SRgb));
    return bounded;
}

std::optional<QImage> RawFile::developed(const DecodeRequest &request, QString &reason)
{
    const libraw_image_sizes_t &sizes = m_raw->imgdata.sizes;
    if (!DecodeLimits::admits(sizes.raw_width, sizes.raw_height, DecodeLimits::maximumPixelsUnstoppable,
                              reason) ||
        !DecodeLimits::admits(sizes.width, sizes.height, DecodeLimits::maximumPixelsUnstoppable, reason))
        return std::nullopt;
    // A colour filter's cells give a full pixel for every four, in a fifth of the time.
    const int half = qMax(sizes.width, sizes.height) / 2;
    const bool isHalfEnough = request.maxPixelSize > 0 && half >= request.maxPixelSize;
    return process(request, isHalfEnough, reason);
}

std::optional<QImage> RawFile::process(const DecodeRequest &request, bool isHalfSize, QString &reason)
{
    libraw_output_params_t &params = m_raw->imgdata.params;
    params.half_size = isHalfSize ? 1 : 0;
    params.user_flip = 0; // unrotated: whoever shows the picture turns it by its orientation, once
    params.use_camera_wb = 1;
    params.output_bps = 8;
    params.output_color = 1; // sRGB
    int error = m_raw->unpack();
    if (error == LIBRAW_SUCCESS)
        error = m_raw->dcraw_process();
    if (error != LIBRAW_SUCCESS) {
        reason = libRawReason(error);
        return std::nullopt;
    }
    const Processed pixels(m_raw->dcraw_make_mem_image(&error));
    const bool isUsable = pixels && pixels->type == LIBRAW_IMAGE_BITMAP && pixels->bits == 8 &&
                          (pixels->colors == 3 || pixels->colors == 1);
    if (!isUsable) {
        reason = libRawReason(error);
        return std::nullopt;
    }
    const QImage image(pixels->data, pixels->width, pixels->height, qsizetype(pixels->width) * pixels->colors,
                       pixels->colors == 3 ? QImage::Format_RGB888 : QImage::Format_Grayscale8);
    QImage bounded = scaledImage(image, request.boundedSize(image.size()));
    bounded.setColorSpace(QColorSpace(QColorSpace::SRgb));
    return bounded;
}

} // namespace

std::optional<QImage> decodeRaw(const InputFile &file, const DecodeRequest &request, QString &reason)
{
    if (request.isPreviewAllowed) {
        if (const auto preview = decodeListedPreview(file, request))
            return preview;
    }
    RawFile raw(request.deadline);
    if (!raw.open(file, reason))
        return std::nullopt;
    if (request.isPreviewAllowed) {
        if (const auto preview = raw.thumbnail(request))
            return preview;
    }
    return raw.developed(request, reason);
}

int rawOrientation(const InputFile &file)
{
    const QDeadlineTimer deadline(DecodeLimits::maximumTime);
    RawFile raw(deadline);
    QString unused;
    if (!raw.open(file, unused))
        return 1;
    switch (raw.flip()) {
    case 3:
        return 3;
    case 5:
        return 8;
    case 6:
        return 6;
    default:
        return 1;
    }
}

} // namespace Qorvane
