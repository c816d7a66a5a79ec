#include "encoders/graph/ModelScan.h"

#include <QLocale>

#include <cstdint>
#include <optional>

namespace Qorvane::Encoders {

namespace {

// How deep graphs may lie inside of nodes; protobuf's own limit is a hundred messages.
constexpr int greatestDepth = 90;

enum class Kind { model, graph, node, attribute, tensor, sparseTensor, function, other };

/// What lies in field `field` of a message of kind `kind`, by the numbers of the ONNX file format.
Kind childKind(Kind kind, std::uint64_t field)
{
    switch (kind) {
    case Kind::model:
        return field == 7 ? Kind::graph : field == 25 ? Kind::function : Kind::other;
    case Kind::graph:
        return field == 1    ? Kind::node
               : field == 5  ? Kind::tensor
               : field == 15 ? Kind::sparseTensor
                             : Kind::other;
    case Kind::function:
        return field == 7 ? Kind::node : Kind::other;
    case Kind::node:
        return field == 5 ? Kind::attribute : Kind::other;
    case Kind::attribute:
        return field == 5 || field == 10    ? Kind::tensor
               : field == 6 || field == 11  ? Kind::graph
               : field == 22 || field == 23 ? Kind::sparseTensor
                                            : Kind::other;
    case Kind::sparseTensor:
        return field == 1 || field == 2 ? Kind::tensor : Kind::other;
    case Kind::tensor:
    case Kind::other:
        return Kind::other;
    }
    return Kind::other;
}

/// Whether the field holds integers of one to ten bytes each without a field number of their own.
bool isPackedIntegers(Kind kind, std::uint64_t field)
{
    return (kind == Kind::tensor && (field == 1 || field == 5 || field == 7 || field == 11)) ||
           (kind == Kind::attribute && field == 8);
}

class Scan
{
public:
    Scan(QByteArrayView bytes, const ModelLimits &limits)
        : m_bytes(bytes)
        , m_limits(limits)
    {
    }

    bool walk(Kind kind, qsizetype end, int depth);
    bool hasGraph() const { return m_hasGraph; }
    bool isOverLimit() const
    {
        return m_elements > m_limits.elements || m_packedIntegers > m_limits.packedIntegers;
    }

private:
    std::optional<std::uint64_t> varint(qsizetype end);
    bool skip(qsizetype count, qsizetype end);
    bool walkField(Kind kind, std::uint64_t key, qsizetype end, int depth);

    QByteArrayView m_bytes;
    const ModelLimits &m_limits;
    qsizetype m_at = 0;
    qint64 m_elements = 0;
    qint64 m_packedIntegers = 0;
    bool m_hasGraph = false;
};

std::optional<std::uint64_t> Scan::varint(qsizetype end)
{
    std::uint64_t value = 0;
    for (int shift = 0; shift < 64 && m_at < end; shift += 7) {
        const auto byte = static_cast<std::uint8_t>(m_bytes[m_at++]);
        value |= std::uint64_t(byte & 0x7f) << shift;
        if ((byte & 0x80) == 0)
            return value;
    }
    return std::nullopt;
}

bool Scan::skip(qsizetype count, qsizetype end)
{
    if (count > end - m_at)
        return false;
    m_at += count;
    return true;
}

bool Scan::walkField(Kind kind, std::uint64_t key, qsizetype end, int depth)
{
    const std::uint64_t field = key >> 3;
    switch (key & 7) {
    case 0:
        return varint(end).has_value();
    case 1:
        return skip(8, end);
    case 5:
        return skip(4, end);
    case 2: {
        const Kind child = childKind(kind, field);
        // Also of a graph that its file breaks off in.
        m_hasGraph |= kind == Kind::model && child == Kind::graph;
        const auto length = varint(end);
        if (!length || *length > static_cast<std::uint64_t>(end - m_at))
            return false;
        const qsizetype fieldEnd = m_at + static_cast<qsizetype>(*length);
        if (isPackedIntegers(kind, field))
            m_packedIntegers += static_cast<qint64>(*length);
        if (child == Kind::other)
            m_at = fieldEnd;
        return child == Kind::other || walk(child, fieldEnd, depth + 1);
    }
    default:
        return false;
    }
}

bool Scan::walk(Kind kind, qsizetype end, int depth)
{
    if (depth > greatestDepth)
        return false;
    while (m_at < end) {
        ++m_elements;
        const auto key = varint(end);
        if (!key || *key >> 3 == 0 || isOverLimit() || !walkField(kind, *key, end, depth))
            return false;
    }
    return m_at == end;
}

} // namespace

Outcome<void> scanModel(QByteArrayView bytes, const QString &name, const ModelLimits &limits)
{
    const QString expected = QStringLiteral("an ONNX model in %1").arg(name);
    const QString again = QStringLiteral("fetch the file again and compare its size with the publisher's");
    if (bytes.size() > limits.fileSize)
        return problem(expected,
                       QStringLiteral("a file of %1, more than the format can hold")
                           .arg(QLocale::c().formattedDataSize(bytes.size())),
                       QStringLiteral("use the export that keeps its weights in a file beside the model"));
    if (bytes.isEmpty())
        return problem(expected, QStringLiteral("an empty file"), again);

    Scan scan(bytes, limits);
    const bool isWhole = scan.walk(Kind::model, bytes.size(), 0);
    if (scan.isOverLimit())
        return problem(expected, QStringLiteral("more nodes and numbers than any encoder has"),
                       QStringLiteral("don't trust this file"));
    if (isWhole && scan.hasGraph())
        return {};
    // A file that begins as models do, with a graph in it, was one once.
    if (scan.hasGraph())
        return problem(expected, QStringLiteral("a file that is cut off or damaged"), again);
    return problem(expected, QStringLiteral("a file of another kind"),
                   QStringLiteral("give the .onnx file itself; a text of a few hundred bytes in its place is "
                                  "often a pointer to a file that wasn't fetched"));
}

} // namespace Qorvane::Encoders
