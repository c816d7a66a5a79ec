#include "media/decoders/ByteSource.h"

#include <cstring>

namespace Qorvane {

qint64 MemoryBytes::readAt(qint64 offset, void *buffer, qint64 count) const
{
    if (offset < 0 || offset >= m_bytes.size())
        return 0;
    const qint64 there = qMin(count, m_bytes.size() - offset);
    if (there <= 0)
        return 0;
    std::memcpy(buffer, m_bytes.constData() + offset, size_t(there));
    return there;
}

ByteRange::ByteRange(const ByteSource &whole, qint64 offset, qint64 size)
    : m_whole(whole)
    , m_offset(qBound(qint64(0), offset, whole.size()))
    , m_size(qBound(qint64(0), size, whole.size() - m_offset))
{
}

qint64 ByteRange::readAt(qint64 offset, void *buffer, qint64 count) const
{
    if (offset < 0 || offset >= m_size)
        return 0;
    return m_whole.readAt(m_offset + offset, buffer, qMin(count, m_size - offset));
}

} // namespace Qorvane
