#pragma once

#include <QByteArray>

#include <utility>

namespace Qorvane {

/// Bytes that can be read at any place: a file, a part of one, or memory. Reading is const and may be done
/// from several threads at once.
class ByteSource
{
public:
    ByteSource() = default;
    virtual ~ByteSource() = default;
    ByteSource(const ByteSource &) = delete;
    ByteSource &operator=(const ByteSource &) = delete;

    virtual qint64 size() const = 0;
    /// Copies up to `count` bytes from `offset` into `buffer`; how many there were, 0 at the end or on
    /// failure.
    virtual qint64 readAt(qint64 offset, void *buffer, qint64 count) const = 0;

    /// Up to `count` bytes from `offset`.
    QByteArray bytes(qint64 offset, qint64 count) const
    {
        const qint64 there = qBound(qint64(0), size() - offset, count);
        QByteArray result(there, Qt::Uninitialized);
        result.truncate(there > 0 ? readAt(offset, result.data(), there) : 0);
        return result;
    }
};

/// Bytes in memory, kept alive by the array's own sharing.
class MemoryBytes : public ByteSource
{
public:
    explicit MemoryBytes(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
    }
    qint64 size() const override { return m_bytes.size(); }
    qint64 readAt(qint64 offset, void *buffer, qint64 count) const override;

private:
    QByteArray m_bytes;
};

/// `size` bytes of another source, from `offset`; what lies beyond the other's end isn't there. The other
/// must outlive this one.
class ByteRange : public ByteSource
{
public:
    ByteRange(const ByteSource &whole, qint64 offset, qint64 size);
    qint64 size() const override { return m_size; }
    qint64 readAt(qint64 offset, void *buffer, qint64 count) const override;

private:
    const ByteSource &m_whole;
    qint64 m_offset;
    qint64 m_size;
};

} // namespace Qorvane
