#include "encoders/graph/ModelScan.h"

#include <QLocale>

#include <cstdint>
#include <optional>

namespace Qorvane::Encoders {

namespace {

// How deep graphs may lie inside of nodes; protobuf's own limit is a hundred messages.
constexpr int greatestDepth = 90;

// Of a model: graphs of its own for the training, which nothing else here looks into.
constexpr std::uint64_t trainingField = 20;

enum class Kind {
    model,
    graph,
    node,
    attribute,
    tensor,
    sparseTensor,
    function,
    value,
    type,
    tensorType,
    innerType, ///< a list's or an optional's, of what lies in it
    mapType,
    shape,
    entries, ///< names and texts
    other
};

Kind childOfGraph(std::uint64_t field)
{
    switch (field) {
    case 1:
        return Kind::node;
    case 5:
        return Kind::tensor;
    case 11: // inputs
    case 12: // outputs
    case 13: // values in between
        return Kind::value;
    case 14: // what belongs to quantised values
    case 16: // remarks
        return Kind::entries;
    case 15:
        return Kind::sparseTensor;
    default:
        return Kind::other;
    }
}

Kind childOfFunction(std::uint64_t field)
{
    return field == 7 ? Kind::node : field == 11 ? Kind::attribute : field == 12 ? Kind::value : Kind::other;
}

Kind childOfAttribute(std::uint64_t field)
{
    switch (field) {
    case 5:
    case 10:
        return Kind::tensor;
    case 6:
    case 11:
        return Kind::graph;
    case 14:
    case 15:
        return Kind::type;
    case 22:
    case 23:
        return Kind::sparseTensor;
    default:
        return Kind::other;
    }
}

Kind childOfType(std::uint64_t field)
{
    switch (field) {
    case 1:
    case 8:
        return Kind::tensorType;
    case 4:
    case 9:
        return Kind::innerType;
    case 5:
        return Kind::mapType;
    default:
        return Kind::other;
    }
}

/// What lies in field `field` of a message of kind `kind`, by the numbers of the ONNX file format.
Kind childKind(Kind kind, std::uint64_t field)
{
    switch (kind) {
    case Kind::model:
        return field == 7 ? Kind::graph : field == 25 ? Kind::function : Kind::other;
    case Kind::graph:
        return childOfGraph(field);
    case Kind::function:
        return childOfFunction(field);
    case Kind::node:
        return field == 5 ? Kind::attribute : Kind::other;
    case Kind::attribute:
        return childOfAttribute(field);
    case Kind::sparseTensor:
        return field == 1 || field == 2 ? Kind::tensor : Kind::other;
    case Kind::value:
        return field == 2 ? Kind::type : Kind::other;
    case Kind::type:
        return childOfType(field);
    case Kind::tensorType:
        return field == 2 ? Kind::shape : Kind::other;
    case Kind::innerType:
        return field == 1 ? Kind::type : Kind::other;
    case Kind::mapType:
        return field == 2 ? Kind::type : Kind::other;
    case Kind::shape:
        return field == 1 ? Kind::entries : Kind::other;
    case Kind::tensor:
    case Kind::entries:
    case Kind::other:
        return Kind::other;
    }
    return Kind::other;
}

/// Whether the field holds integers of one to ten bytes each without a field number of their own.
bool isPackedIntegers(Kind kind, std::uint64_t field)
{
    return (kind == Kind::tensor && (field == 1 || field == 5 || field == 7 || field == 11)) ||
           (kind == Kind::sparseTensor && field == 3) || (kind == Kind::attribute && field == 8);
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
    bool hasTraining() const { return m_hasTraining; }
    bool hasTooManyElements() const { return m_elements > m_limits.elements; }
    bool hasTooManyPackedIntegers() const { return m_packedIntegers > m_limits.packedIntegers; }

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
    bool m_hasTraining = false;
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
        m_hasTraining |= kind == Kind::model && field == trainingField;
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
        if (!key || *key >> 3 == 0 || !walkField(kind, *key, end, depth))
            return false;
        if (hasTraining() || hasTooManyElements() || hasTooManyPackedIntegers())
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
    if (scan.hasTraining())
        return problem(expected, QStringLiteral("one that is being trained"),
                       QStringLiteral("use an export for use, without instructions for training"));
    if (scan.hasTooManyPackedIntegers())
        return problem(expected,
                       QStringLiteral("weights in an unusual form, as numbers packed one behind the other"),
                       QStringLiteral("save the model again with raw data, as the usual converters do"));
    if (scan.hasTooManyElements())
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
