// How long a thumbnail takes, beside the least that its decoding could take and beside libvips' own way.

#include "media/ImageSource.h"
#include "media/PictureFiles.h"
#include "media/decoders/MediaLibraries.h"
#include "support/Costs.h"

#include <QBuffer>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <jpeglib.h>
#include <vips/vips.h>

#include <cstdio>
#include <random>
#include <vector>

namespace {

using namespace Qorvane;

constexpr int thumbnailSide = 800;
constexpr int thumbnailQuality = 90;

/// Noise of many scales, so that the entropy coder has as much to do as with a photograph.
QImage noise(int width, int height)
{
    std::mt19937 random(7);
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(qRgb(128, 128, 128));
    std::vector<int> sums(size_t(width) * size_t(height) * 3, 128);
    for (int cell = 512; cell >= 2; cell /= 4) {
        const int columns = width / cell + 2;
        const int amplitude = cell >= 128 ? 48 : cell >= 32 ? 24 : cell >= 8 ? 12 : 6;
        std::vector<int> lattice(size_t(columns) * size_t(height / cell + 2) * 3);
        for (int &value : lattice)
            value = int(random() % unsigned(2 * amplitude + 1)) - amplitude;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const size_t from = (size_t(y / cell) * size_t(columns) + size_t(x / cell)) * 3;
                const size_t to = (size_t(y) * size_t(width) + size_t(x)) * 3;
                for (size_t channel = 0; channel < 3; ++channel)
                    sums[to + channel] += lattice[from + channel];
            }
        }
    }
    for (int y = 0; y < height; ++y) {
        auto *row = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int *sum = &sums[(size_t(y) * size_t(width) + size_t(x)) * 3];
            row[x] = qRgb(qBound(0, sum[0], 255), qBound(0, sum[1], 255), qBound(0, sum[2], 255));
        }
    }
    return picture;
}

struct Files
{
    QTemporaryDir folder;
    QByteArray photographBytes =
        PictureFiles::jpeg(noise(6000, 4000), {PictureFiles::JpegColour::ycc, false, 90, {}});
    QString photograph = PictureFiles::write(folder, QStringLiteral("a.jpg"), photographBytes);
    QByteArray previewBytes =
        PictureFiles::jpeg(noise(1616, 1080), {PictureFiles::JpegColour::ycc, false, 90, {}});
    QString preview = PictureFiles::write(folder, QStringLiteral("preview.jpg"), previewBytes);
    QString raw = PictureFiles::write(folder, QStringLiteral("a.dng"),
                                      PictureFiles::dng(noise(3000, 2000), previewBytes, {1616, 1080}, 1));
};

const Files &files()
{
    static const Files made;
    return made;
}

QByteArray encoded(const QImage &image)
{
    return PictureFiles::jpeg(image, {PictureFiles::JpegColour::ycc, false, thumbnailQuality, {}});
}

/// The least: libjpeg-turbo at the reduction that still covers, and nothing after it.
void decodeBare()
{
    const QByteArray &bytes = files().photographBytes;
    jpeg_decompress_struct decompress = {};
    jpeg_error_mgr errors = {};
    decompress.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&decompress);
    jpeg_mem_src(&decompress, reinterpret_cast<const unsigned char *>(bytes.constData()),
                 static_cast<unsigned long>(bytes.size()));
    jpeg_read_header(&decompress, TRUE);
    decompress.scale_num = 1;
    decompress.scale_denom = 4;
    decompress.out_color_space = JCS_EXT_BGRX;
    jpeg_start_decompress(&decompress);
    std::vector<JSAMPLE> row(size_t(decompress.output_width) * 4);
    JSAMPROW rows[] = {row.data()};
    while (decompress.output_scanline < decompress.output_height)
        jpeg_read_scanlines(&decompress, rows, 1);
    jpeg_finish_decompress(&decompress);
    jpeg_destroy_decompress(&decompress);
    benchmark::DoNotOptimize(row.data());
}

void makeThumbnail()
{
    const auto source = ImageSource::open(files().photograph);
    benchmark::DoNotOptimize(encoded(*source->thumbnail(thumbnailSide)));
}

void makeThumbnailWithVips()
{
    const QByteArray path = files().photograph.toUtf8();
    VipsImage *image = nullptr;
    vips_thumbnail(path.constData(), &image, thumbnailSide, "height", thumbnailSide, nullptr);
    void *buffer = nullptr;
    size_t size = 0;
    vips_jpegsave_buffer(image, &buffer, &size, "Q", thumbnailQuality, nullptr);
    g_free(buffer);
    g_object_unref(image);
}

void thumbnailAgainstBareDecode(benchmark::State &state)
{
    MediaLibraries::ensureReady();
    Costs bare;
    Costs thumbnail;
    Costs vips;
    for (void (*work)() : {decodeBare, makeThumbnail, makeThumbnailWithVips})
        work();
    for (auto _ : state) {
        bare.add(costOf(decodeBare));
        thumbnail.add(costOf(makeThumbnail));
        vips.add(costOf(makeThumbnailWithVips));
    }
    reportCost(state, "decode", bare);
    reportCost(state, "thumbnail", thumbnail);
    reportCost(state, "vips", vips);
    reportRatio(state, "thumbnail/decode", thumbnail, bare);
    reportRatio(state, "thumbnail/vips", thumbnail, vips);
}

void rawThumbnail(benchmark::State &state)
{
    const QString path = files().raw;
    for (auto _ : state) {
        const auto source = ImageSource::open(path);
        benchmark::DoNotOptimize(source->thumbnail(thumbnailSide));
    }
}

void previewThumbnail(benchmark::State &state)
{
    const QString path = files().preview;
    for (auto _ : state) {
        const auto source = ImageSource::open(path);
        benchmark::DoNotOptimize(source->thumbnail(thumbnailSide));
    }
}

} // namespace

BENCHMARK(thumbnailAgainstBareDecode)->Unit(benchmark::kMillisecond)->Iterations(15)->UseRealTime();
BENCHMARK(previewThumbnail)->Unit(benchmark::kMillisecond);
BENCHMARK(rawThumbnail)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
