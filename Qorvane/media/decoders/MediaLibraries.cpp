#include "media/decoders/MediaLibraries.h"

#include "media/decoders/DecodeLimits.h"

#include <QImageReader>

#include <vips/vips.h>

#include <exiv2/exiv2.hpp>
#if __has_include(<MagickCore/MagickCore.h>)
#include <MagickCore/MagickCore.h>
#else
#include <magick/MagickCore.h>
#endif

#include <mutex>

extern "C" {
#include <libavutil/log.h>
}

namespace Qorvane::MediaLibraries {

namespace {

// Its start writes the place it was installed at into the environment, unless it stands there already. A
// variable that comes to the others moves them all, and whoever reads one on another thread meanwhile ends
// the program. So it comes while there is one thread only, before main(), in every program that has libvips.
// By an absolute name, since it reports a relative one that it doesn't find, for which it must have started.
[[maybe_unused]] const char *const vipsPrefix = vips_guess_prefix("/qorvane", "VIPSHOME");

void prepareExiv2()
{
    // Neither call is safe while another thread reads metadata.
    Exiv2::XmpParser::initialize();
#if defined(EXV_ENABLE_BMFF) && !EXIV2_TEST_VERSION(0, 28, 0)
    Exiv2::enableBMFF();
#endif
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
}

void ignoreMessage(const gchar *, GLogLevelFlags, const gchar *, gpointer) {}

void prepareVips()
{
    if (vips_init("qorvane") != 0)
        return;
    // A picture is decoded once and never asked for again; a cache would only hold memory and open files.
    vips_cache_set_max(0);
    // The runs that decode are parallel themselves.
    vips_concurrency_set(1);
    // Only loaders that are named are ever used. Should one come to be guessed all the same, it must not be
    // one that nobody tests against hostile files, or that starts programs. Of the untested ones two are
    // wanted.
    vips_block_untrusted_set(TRUE);
    for (const char *wanted : {"VipsForeignLoadPpm", "VipsForeignLoadRad"})
        vips_operation_block_set(wanted, FALSE);
    // It warns about each flaw of a file; whoever asked for the picture is told by its absence.
    g_log_set_handler("VIPS", GLogLevelFlags(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_INFO), ignoreMessage, nullptr);
}

// The formats left to ImageMagick count their sides in 16 bits.
constexpr MagickSizeType maximumMagickSide = 65'535;

void prepareMagick()
{
    MagickCoreGenesis(nullptr, MagickFalse); // its signal handlers are not for a library
    // A distribution's policy may set lower limits; these never raise them.
    SetMagickResourceLimit(MemoryResource, DecodeLimits::maximumMemory);
    SetMagickResourceLimit(AreaResource, DecodeLimits::maximumPixelsUnstoppable);
    SetMagickResourceLimit(WidthResource, maximumMagickSide);
    SetMagickResourceLimit(HeightResource, maximumMagickSide);
    // What doesn't fit into memory would otherwise go to temporary files of gigabytes.
    SetMagickResourceLimit(MapResource, 0);
    SetMagickResourceLimit(DiskResource, 0);
    SetMagickResourceLimit(ThreadResource, 1);
    // The time stays without a limit: ImageMagick counts it from the program's first picture on, and ends the
    // program. A progress monitor stops each decode instead.
}

} // namespace

void ensureReady()
{
    static std::once_flag once;
    std::call_once(once, [] {
        prepareExiv2();
        prepareVips();
        prepareMagick();
        av_log_set_level(AV_LOG_QUIET);
        // Qt counts in megabytes; its own limit of 256 refuses a scan of 70 million pixels.
        QImageReader::setAllocationLimit(int(DecodeLimits::maximumMemory >> 20));
    });
}

} // namespace Qorvane::MediaLibraries
