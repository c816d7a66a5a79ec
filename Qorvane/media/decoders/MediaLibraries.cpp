#include "media/decoders/MediaLibraries.h"

#include "media/decoders/DecodeLimits.h"

#include <QImageReader>

#include <vips/vips.h>

#include <exiv2/exiv2.hpp>
#include <mutex>

extern "C" {
#include <libavutil/log.h>
}

namespace Qorvane::MediaLibraries {

namespace {

void prepareExiv2()
{
    // Neither call is safe while another thread reads metadata.
    Exiv2::XmpParser::initialize();
#if defined(EXV_ENABLE_BMFF) && !EXIV2_TEST_VERSION(0, 28, 0)
    Exiv2::enableBMFF();
#endif
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
}

void prepareVips()
{
    if (vips_init("qorvane") != 0)
        return;
    // A picture is decoded once and never asked for again; a cache would only hold memory and open files.
    vips_cache_set_max(0);
    // The runs that decode are parallel themselves.
    vips_concurrency_set(1);
    // Only loaders that are named are ever used. These would not be: they start programs, run scripts or
    // follow names in the file.
    vips_block_untrusted_set(TRUE);
    vips_operation_block_set("VipsForeignLoadMagick", TRUE);
}

} // namespace

void ensureReady()
{
    static std::once_flag once;
    std::call_once(once, [] {
        prepareExiv2();
        prepareVips();
        av_log_set_level(AV_LOG_QUIET);
        // Qt counts in megabytes; its own limit of 256 refuses a scan of 70 million pixels.
        QImageReader::setAllocationLimit(int(DecodeLimits::maximumMemory >> 20));
    });
}

} // namespace Qorvane::MediaLibraries
