#include "media/ImageDestination.h"
#include "media/OrientedImage.h"
#include "media/ThumbnailCache.h"
#include "media/ThumbnailPaths.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <vector>

// What a thumbnail costs: handing out one that exists, and the steps of making one after the decode.

using namespace Qorvane;

namespace {

/// Noise over a gradient, about as hard to compress as a photograph.
QImage photographLike(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator random(1);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int noise = int(random.bounded(24u));
            image.setPixel(
                x, y, qRgb(x * 230 / size.width() + noise, y * 230 / size.height() + noise, 100 + noise));
        }
    }
    return image;
}

/// A cache of its own with thumbnails for so many files of one folder.
class FilledCache
{
public:
    explicit FilledCache(int count)
    {
        qputenv("XDG_CACHE_HOME", QFile::encodeName(m_folder.path()));
        const QByteArray jpeg = *jpegRepresentation(photographLike({800, 600}), 0.9);
        for (int i = 0; i < count; ++i) {
            m_files.push_back(FileUrl::file(QStringLiteral("/photographs/2024/summer/%1.jpg").arg(i)));
            QFile thumbnail(thumbnailURL(m_files.back())->path());
            if (thumbnail.open(QIODevice::WriteOnly))
                thumbnail.write(jpeg);
        }
    }

    const FileUrl &file(size_t index) const { return m_files[index % m_files.size()]; }

private:
    QTemporaryDir m_folder;
    std::vector<FileUrl> m_files;
};

void getExistingThumbnail(benchmark::State &state)
{
    const FilledCache cache(200);
    size_t index = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(ThumbnailCache::getThumbnail(cache.file(index++)));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(getExistingThumbnail)->Unit(benchmark::kMicrosecond);

void decodeExistingThumbnail(benchmark::State &state)
{
    const FilledCache cache(200);
    size_t index = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(ThumbnailCache::getThumbnail(cache.file(index++))->pixels());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(decodeExistingThumbnail)->Unit(benchmark::kMillisecond);

void redrawByOrientation(benchmark::State &state)
{
    const QImage image = photographLike({800, 533});
    for (auto _ : state)
        benchmark::DoNotOptimize(orientedImage(image, quint32(state.range(0))));
}
BENCHMARK(redrawByOrientation)->Arg(1)->Arg(3)->Arg(6)->Unit(benchmark::kMillisecond);

void encodeThumbnail(benchmark::State &state)
{
    const QImage image = orientedImage(photographLike({800, 533}), 1);
    for (auto _ : state)
        benchmark::DoNotOptimize(jpegRepresentation(image, 0.9));
}
BENCHMARK(encodeThumbnail)->Unit(benchmark::kMillisecond);

void measureCache(benchmark::State &state)
{
    const FilledCache cache(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(ThumbnailCache::measureCacheSizeInMB());
}
BENCHMARK(measureCache)->Arg(2000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
