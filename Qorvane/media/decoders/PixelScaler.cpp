#include "media/decoders/PixelScaler.h"

#include <QColorSpace>

#include <zimg.h>

#include <array>
#include <cstdlib>
#include <memory>

namespace Qorvane {

namespace {

// The widest vector registers that zimg uses are 64 bytes; its rows have to start on their boundary.
constexpr size_t rowAlignment = 64;
// Lanczos with three lobes: the usual trade between sharpness and ringing for photographs.
constexpr double lanczosLobes = 3.0;

struct Free
{
    void operator()(void *memory) const { std::free(memory); }
};
struct FreeGraph
{
    void operator()(zimg_filter_graph *graph) const { zimg_filter_graph_free(graph); }
};
using Graph = std::unique_ptr<zimg_filter_graph, FreeGraph>;
using Buffer = std::unique_ptr<uchar, Free>;

Buffer alignedBuffer(size_t size)
{
    const size_t rounded = (size + rowAlignment - 1) / rowAlignment * rowAlignment;
    return Buffer(static_cast<uchar *>(std::aligned_alloc(rowAlignment, qMax(rounded, rowAlignment))));
}

/// One channel of a picture, rows aligned.
struct Plane
{
    explicit Plane(QSize planeSize)
        : size(planeSize)
        , stride((size_t(planeSize.width()) + rowAlignment - 1) / rowAlignment * rowAlignment)
        , bytes(alignedBuffer(stride * size_t(planeSize.height())))
    {
    }
    uchar *row(int y) { return bytes.get() + stride * size_t(y); }

    QSize size;
    size_t stride;
    Buffer bytes;
};

Graph resizeGraph(QSize from, QSize to)
{
    const auto format = [](QSize size) {
        zimg_image_format result;
        zimg_image_format_default(&result, ZIMG_API_VERSION);
        result.width = unsigned(size.width());
        result.height = unsigned(size.height());
        result.pixel_type = ZIMG_PIXEL_BYTE;
        result.color_family = ZIMG_COLOR_GREY;
        result.pixel_range = ZIMG_RANGE_FULL;
        return result;
    };
    const zimg_image_format source = format(from);
    const zimg_image_format target = format(to);
    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.resample_filter = ZIMG_RESIZE_LANCZOS;
    params.filter_param_a = lanczosLobes;
    params.dither_type = ZIMG_DITHER_NONE;
    return Graph(zimg_filter_graph_build(&source, &target, &params));
}

/// A QRgb is four bytes, whichever way round; channel 0 is its lowest.
void takeChannel(const QImage &image, int channel, Plane &plane)
{
    const int shift = channel * 8;
    for (int y = 0; y < plane.size.height(); ++y) {
        const auto *in = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        uchar *out = plane.row(y);
        for (int x = 0; x < plane.size.width(); ++x)
            out[x] = uchar(in[x] >> shift);
    }
}

bool runGraph(const zimg_filter_graph *graph, Plane &source, Plane &target, void *scratch)
{
    zimg_image_buffer_const in = {};
    in.version = ZIMG_API_VERSION;
    in.plane[0] = {source.bytes.get(), ptrdiff_t(source.stride), ZIMG_BUFFER_MAX};
    zimg_image_buffer out = {};
    out.version = ZIMG_API_VERSION;
    out.plane[0] = {target.bytes.get(), ptrdiff_t(target.stride), ZIMG_BUFFER_MAX};
    return zimg_filter_graph_process(graph, &in, &out, scratch, nullptr, nullptr, nullptr, nullptr) == 0;
}

void mergeOpaque(std::array<Plane, 4> &planes, QImage &result)
{
    for (int y = 0; y < result.height(); ++y) {
        auto *out = reinterpret_cast<QRgb *>(result.scanLine(y));
        const uchar *blue = planes[0].row(y);
        const uchar *green = planes[1].row(y);
        const uchar *red = planes[2].row(y);
        for (int x = 0; x < result.width(); ++x)
            out[x] = qRgb(red[x], green[x], blue[x]);
    }
}

/// The filter's overshoot can lift a colour above its alpha, which a premultiplied pixel must not have.
void mergePremultiplied(std::array<Plane, 4> &planes, QImage &result)
{
    for (int y = 0; y < result.height(); ++y) {
        auto *out = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            const uchar alpha = planes[3].row(y)[x];
            const auto colour = [&](size_t channel) { return qMin(planes[channel].row(y)[x], alpha); };
            out[x] = qRgba(colour(2), colour(1), colour(0), alpha);
        }
    }
}

} // namespace

QImage scaledImage(const QImage &image, QSize size)
{
    const bool isOpaque = !image.hasAlphaChannel();
    const QImage::Format format = isOpaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied;
    const QImage source = image.format() == format ? image : image.convertToFormat(format);
    if (source.isNull() || size.isEmpty())
        return {};
    if (source.size() == size)
        return source;

    QImage result(size, format);
    Plane channelIn(source.size());
    std::array<Plane, 4> channels = {Plane(size), Plane(size), Plane(size),
                                     Plane(isOpaque ? QSize(1, 1) : size)};
    const Graph graph = resizeGraph(source.size(), size);
    size_t scratchSize = 0;
    if (result.isNull() || !channelIn.bytes || !graph ||
        zimg_filter_graph_get_tmp_size(graph.get(), &scratchSize) != 0)
        return {};
    const Buffer scratch = alignedBuffer(scratchSize);
    for (int channel = 0; channel < (isOpaque ? 3 : 4); ++channel) {
        Plane &target = channels[size_t(channel)];
        if (!target.bytes || !scratch)
            return {};
        takeChannel(source, channel, channelIn);
        if (!runGraph(graph.get(), channelIn, target, scratch.get()))
            return {};
    }
    if (isOpaque)
        mergeOpaque(channels, result);
    else
        mergePremultiplied(channels, result);
    result.setColorSpace(source.colorSpace());
    return result;
}

} // namespace Qorvane
