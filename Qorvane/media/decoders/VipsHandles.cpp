#include "media/decoders/VipsHandles.h"

#include <cstdio>

namespace Qorvane {

VipsBytes::VipsBytes(const ByteSource &bytes)
    : m_bytes(bytes)
{
    VipsSourceCustom *custom = vips_source_custom_new();
    m_source.reset(VIPS_SOURCE(custom));
    g_signal_connect(custom, "read", G_CALLBACK(read), this);
    g_signal_connect(custom, "seek", G_CALLBACK(seek), this);
}

gint64 VipsBytes::read(VipsSourceCustom *, void *buffer, gint64 count, VipsBytes *self)
{
    const qint64 done = self->m_bytes.readAt(self->m_position, buffer, count);
    self->m_position += done;
    return done;
}

gint64 VipsBytes::seek(VipsSourceCustom *, gint64 offset, int whence, VipsBytes *self)
{
    const gint64 base = whence == SEEK_CUR ? self->m_position : whence == SEEK_END ? self->m_bytes.size() : 0;
    const gint64 target = base + offset;
    if (target < 0)
        return -1;
    self->m_position = target;
    return target;
}

} // namespace Qorvane
