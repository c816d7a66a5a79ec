#include "semantic/PlanarResampling.h"

#include <zimg.h>

#include <algorithm>

namespace Qorvane {

namespace {

// Three lobes are what "high quality" usually stands for: sharp, with little ringing.
constexpr int lanczosLobes = 3;

struct FreeGraph
{
    void operator()(zimg_filter_graph *graph) const { zimg_filter_graph_free(graph); }
};
using FilterGraph = std::unique_ptr<zimg_filter_graph, FreeGraph>;

struct FreeMemory
{
    void operator()(void *memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<void, FreeMemory>;

zimg_image_format imageFormat(QSize size, zimg_pixel_type_e pixelType)
{
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(size.width());
    format.height = static_cast<unsigned>(size.height());
    format.pixel_type = pixelType;
    format.color_family = ZIMG_COLOR_RGB;
    format.matrix_coefficients = ZIMG_MATRIX_RGB;
    format.pixel_range = ZIMG_RANGE_FULL;
    return format;
}

FilterGraph makeGraph(QSize sourceSize, const QRectF &region, QSize targetSize)
{
    zimg_image_format source = imageFormat(sourceSize, ZIMG_PIXEL_BYTE);
    source.active_region.left = region.left();
    source.active_region.top = region.top();
    source.active_region.width = region.width();
    source.active_region.height = region.height();
    // In floats, because between its two passes the resampler would cut whole numbers off at 0 and 255, which
    // shows along every hard edge.
    const zimg_image_format target = imageFormat(targetSize, ZIMG_PIXEL_FLOAT);

    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    parameters.resample_filter = ZIMG_RESIZE_LANCZOS;
    parameters.filter_param_a = lanczosLobes;
    return FilterGraph(zimg_filter_graph_build(&source, &target, &parameters));
}

Memory workingMemory(const zimg_filter_graph *graph)
{
    size_t bytes = 0;
    if (zimg_filter_graph_get_tmp_size(graph, &bytes) != ZIMG_ERROR_SUCCESS)
        return nullptr;
    constexpr size_t alignment = PlanarImage<float>::alignment;
    return Memory(std::aligned_alloc(alignment, (bytes / alignment + 1) * alignment));
}

std::optional<PlanarImage<uint8_t>> roundedToBytes(const PlanarImage<float> &picture)
{
    auto bytes = PlanarImage<uint8_t>::create(picture.size());
    if (!bytes)
        return std::nullopt;
    for (size_t channel = 0; channel < PlanarImage<float>::channelCount; ++channel) {
        for (int y = 0; y < picture.size().height(); ++y) {
            const float *row = picture.row(channel, y);
            std::transform(row, row + picture.size().width(), bytes->row(channel, y), [](float value) {
                return static_cast<uint8_t>(std::clamp(value * 255.0f + 0.5f, 0.0f, 255.0f));
            });
        }
    }
    return bytes;
}

} // namespace

std::optional<PlanarImage<uint8_t>> resampled(const PlanarImage<uint8_t> &source, const QRectF &region,
                                              QSize targetSize)
{
    const FilterGraph graph = makeGraph(source.size(), region, targetSize);
    if (!graph)
        return std::nullopt;
    const Memory memory = workingMemory(graph.get());
    auto target = PlanarImage<float>::create(targetSize);
    if (!memory || !target)
        return std::nullopt;

    zimg_image_buffer_const from{};
    zimg_image_buffer to{};
    from.version = ZIMG_API_VERSION;
    to.version = ZIMG_API_VERSION;
    for (size_t channel = 0; channel < PlanarImage<float>::channelCount; ++channel) {
        from.plane[channel] = {source.plane(channel), source.bytesPerRow(), ZIMG_BUFFER_MAX};
        to.plane[channel] = {target->plane(channel), target->bytesPerRow(), ZIMG_BUFFER_MAX};
    }
    const auto result =
        zimg_filter_graph_process(graph.get(), &from, &to, memory.get(), nullptr, nullptr, nullptr, nullptr);
    if (result != ZIMG_ERROR_SUCCESS)
        return std::nullopt;
    return roundedToBytes(*target);
}

double resamplingReach(double scale)
{
    return lanczosLobes / std::min(scale, 1.0);
}

} // namespace Qorvane
