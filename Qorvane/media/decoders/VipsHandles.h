#pragma once

#include "media/decoders/ByteSource.h"

#include <vips/vips.h>

#include <memory>

namespace Qorvane {

struct Unref
{
    void operator()(void *object) const { g_object_unref(object); }
};
using VipsImageHandle = std::unique_ptr<VipsImage, Unref>;
using VipsSourceHandle = std::unique_ptr<VipsSource, Unref>;

/// A libvips source that reads from `reader`, which must outlive it and every image loaded from it.
class VipsBytes
{
public:
    explicit VipsBytes(const ByteSource &bytes);
    VipsBytes(const VipsBytes &) = delete;
    VipsBytes &operator=(const VipsBytes &) = delete;

    VipsSource *source() const { return m_source.get(); }

private:
    static gint64 read(VipsSourceCustom *source, void *buffer, gint64 count, VipsBytes *self);
    static gint64 seek(VipsSourceCustom *source, gint64 offset, int whence, VipsBytes *self);

    const ByteSource &m_bytes;
    gint64 m_position = 0;
    VipsSourceHandle m_source;
};

} // namespace Qorvane
