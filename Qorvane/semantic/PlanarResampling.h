#pragma once

#include <QRectF>
#include <QSize>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>

namespace Qorvane {

/// Red, green and blue as three planes of samples, laid out as the vector instructions of the resampler want
/// them.
template <typename Sample>
class PlanarImage
{
public:
    static constexpr size_t channelCount = 3;
    /// The widest alignment in bytes that the resampler asks for on any processor.
    static constexpr size_t alignment = 64;

    /// Nothing when memory runs out. The samples are undefined at first.
    static std::optional<PlanarImage> create(QSize size)
    {
        PlanarImage image;
        image.m_size = size;
        const size_t rowLength = static_cast<size_t>(size.width()) * sizeof(Sample);
        image.m_bytesPerRow = (rowLength + alignment - 1) / alignment * alignment;
        const size_t planeLength = image.m_bytesPerRow * static_cast<size_t>(size.height());
        for (auto &plane : image.m_planes) {
            plane.reset(static_cast<Sample *>(std::aligned_alloc(alignment, planeLength)));
            if (!plane)
                return std::nullopt;
        }
        return image;
    }

    QSize size() const { return m_size; }
    ptrdiff_t bytesPerRow() const { return static_cast<ptrdiff_t>(m_bytesPerRow); }
    Sample *plane(size_t channel) { return m_planes[channel].get(); }
    const Sample *plane(size_t channel) const { return m_planes[channel].get(); }
    Sample *row(size_t channel, int y) { return plane(channel) + offset(y); }
    const Sample *row(size_t channel, int y) const { return plane(channel) + offset(y); }

private:
    struct Free
    {
        void operator()(Sample *memory) const { std::free(memory); }
    };

    size_t offset(int y) const { return static_cast<size_t>(y) * (m_bytesPerRow / sizeof(Sample)); }

    QSize m_size;
    size_t m_bytesPerRow = 0;
    std::array<std::unique_ptr<Sample, Free>, channelCount> m_planes;
};

/// Draws `region` of `source` (pixel coordinates with fractions, inside the image) over the whole of a
/// picture of `targetSize`, with a Lanczos filter of three lobes, widened when it reduces; beyond its edges
/// the source counts as mirrored. Rounded and limited to bytes once, at the end. Nothing on failure. Any
/// thread.
std::optional<PlanarImage<uint8_t>> resampled(const PlanarImage<uint8_t> &source, const QRectF &region,
                                              QSize targetSize);

/// How far in source pixels the filter looks beyond a point, at `scale` target pixels per source pixel.
double resamplingReach(double scale);

} // namespace Qorvane
