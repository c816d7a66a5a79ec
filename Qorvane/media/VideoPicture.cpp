#include "media/VideoPicture.h"

#include "media/VideoInput.h"

#include <QColorSpace>

#include <algorithm>
#include <cmath>
#include <cstring>

extern "C" {
#include <libswscale/swscale.h>
}

namespace Qorvane {

namespace {

struct ScalerDeleter
{
    void operator()(SwsContext *context) const { sws_freeContext(context); }
};
using ScalerPointer = std::unique_ptr<SwsContext, ScalerDeleter>;

// Shapes beyond this don't come from any camera or disc; they come from damage, and the picture is taken as
// it is.
constexpr double maxPixelAspect = 8;

double sanePixelAspect(const AVRational &aspect)
{
    const double value = aspect.num > 0 && aspect.den > 0 ? av_q2d(aspect) : 1;
    return value <= maxPixelAspect && value >= 1 / maxPixelAspect ? value : 1;
}

struct SourceFormat
{
    AVPixelFormat format;
    bool isFullRange;
};

// The scaler wants the old formats that had the full range in their name as the plain ones with the range
// told beside.
SourceFormat sourceFormat(const AVFrame &frame)
{
    const auto format = AVPixelFormat(frame.format);
    switch (int(format)) {
    case AV_PIX_FMT_YUVJ420P:
        return {AV_PIX_FMT_YUV420P, true};
    case AV_PIX_FMT_YUVJ411P:
        return {AV_PIX_FMT_YUV411P, true};
    case AV_PIX_FMT_YUVJ422P:
        return {AV_PIX_FMT_YUV422P, true};
    case AV_PIX_FMT_YUVJ440P:
        return {AV_PIX_FMT_YUV440P, true};
    case AV_PIX_FMT_YUVJ444P:
        return {AV_PIX_FMT_YUV444P, true};
    default:
        return {format, frame.color_range == AVCOL_RANGE_JPEG};
    }
}

// A video that doesn't name its matrix has that of its time: high definition came with BT.709.
int colourMatrix(const AVFrame &frame)
{
    if (frame.colorspace != AVCOL_SPC_UNSPECIFIED)
        return frame.colorspace;
    constexpr int highDefinitionLines = 720;
    return frame.height >= highDefinitionLines ? SWS_CS_ITU709 : SWS_CS_ITU601;
}

ScalerPointer makeScaler(const AVFrame &frame, QSize size)
{
    const SourceFormat source = sourceFormat(frame);
    // Areas are averaged, which is what a strong reduction needs; chroma at full precision, since the result
    // is RGB.
    ScalerPointer scaler(sws_getContext(frame.width, frame.height, source.format, size.width(), size.height(),
                                        AV_PIX_FMT_RGB32, SWS_AREA | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT,
                                        nullptr, nullptr, nullptr));
    if (!scaler)
        return nullptr;
    constexpr int neutral = 1 << 16; // contrast and saturation of 1, in the scaler's fixed point
    // Fails for sources that are RGB already, which is fine.
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(colourMatrix(frame)), source.isFullRange,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, neutral, neutral);
    return scaler;
}

// The scaler's vector code writes past the last pixel of a line, so that its output needs the padding of its
// own frames.
FramePointer makeTarget(QSize size)
{
    FramePointer target(av_frame_alloc());
    if (!target)
        return nullptr;
    target->format = AV_PIX_FMT_RGB32;
    target->width = size.width();
    target->height = size.height();
    return av_frame_get_buffer(target.get(), 0) >= 0 ? std::move(target) : nullptr;
}

QImage imageFromTarget(const AVFrame &target)
{
    QImage image(target.width, target.height, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    for (int y = 0; y < target.height; ++y)
        std::memcpy(image.scanLine(y), target.data[0] + qsizetype(y) * target.linesize[0],
                    size_t(target.width) * 4);
    image.setColorSpace(QColorSpace(QColorSpace::SRgb));
    return image;
}

} // namespace

QSize fittedFrameSize(QSize coded, double aspect, int maxSize)
{
    const double width = coded.width() * aspect;
    const double height = coded.height();
    const double factor = std::min(1.0, maxSize / std::max(width, height));
    const auto side = [&](double length) {
        return std::clamp(int(std::lround(length * factor)), 1, maxSize);
    };
    return {side(width), side(height)};
}

std::optional<QImage> pictureFromFrame(const AVFrame &frame, const AVRational &pixelAspect,
                                       const QTransform &upright, int maxSize, QString *error)
{
    const QSize size = fittedFrameSize({frame.width, frame.height}, sanePixelAspect(pixelAspect), maxSize);
    const ScalerPointer scaler = makeScaler(frame, size);
    const FramePointer target = makeTarget(size);
    int result = AVERROR(EINVAL);
    if (scaler && target) {
        result = sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, target->data,
                           target->linesize);
    }
    QImage image = result > 0 ? imageFromTarget(*target) : QImage();
    if (image.isNull()) {
        if (error)
            *error = QStringLiteral("the frame's pixel format can't be converted");
        return std::nullopt;
    }
    return upright.isIdentity() ? image : image.transformed(upright);
}

} // namespace Qorvane
