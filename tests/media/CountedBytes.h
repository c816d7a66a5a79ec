#pragma once

#include "media/decoders/ByteSource.h"

namespace Qorvane {

/// Bytes that tell how many of them were read, the same one twice counting twice.
class CountedBytes : public MemoryBytes
{
public:
    using MemoryBytes::MemoryBytes;
    qint64 readAt(qint64 offset, void *buffer, qint64 count) const override
    {
        const qint64 done = MemoryBytes::readAt(offset, buffer, count);
        m_read += done;
        return done;
    }
    qint64 readCount() const { return m_read; }

private:
    mutable qint64 m_read = 0;
};

} // namespace Qorvane
