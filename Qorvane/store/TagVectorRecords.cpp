#include "store/TagVectorRecords.h"

#include "platform/Log.h"
#include "store/CheckedInteger.h"
#include "store/Statement.h"
#include "store/StoreConnection.h"

#include <QDateTime>

#include <cstring>

namespace Qorvane {

namespace {

using Phase = StoreConnection::Phase;

// From 1970 to 2001, the year that created_time counts from.
constexpr double secondsUntil2001 = 978'307'200;

double secondsSince2001()
{
    return double(QDateTime::currentMSecsSinceEpoch()) / 1000 - secondsUntil2001;
}

// The vector of the row that stands ready. A blob that is shorter than its `dim` can't have been written by
// this program; it counts as none, rather than being read beyond its end.
std::optional<std::vector<float>> vectorOf(const Statement &statement, int blobColumn, int dimColumn)
{
    const auto blob = statement.blob(blobColumn);
    const int dim = statement.integer(dimColumn);
    if (!blob || dim < 1 || blob->size() / sizeof(float) < size_t(dim))
        return std::nullopt;
    std::vector<float> vector(static_cast<size_t>(dim));
    std::memcpy(vector.data(), blob->data(), vector.size() * sizeof(float));
    return vector;
}

} // namespace

void TagVectorRecords::storeTagVector(const QString &tag, const std::vector<float> &vector)
{
    Statement statement(
        m_connection.handle(),
        "INSERT OR REPLACE INTO tag_vectors(tag, vector, dim, created_time) VALUES(?, ?, ?, ?)");
    if (!statement.isPrepared()) {
        m_connection.logFailure("storeTagVector", Phase::prepare);
        return;
    }
    statement.bindText(1, tag);
    statement.bindFloats(2, vector);
    statement.bindInt(3, floatByteCount(vector.size()) / int(sizeof(float)));
    statement.bindDouble(4, secondsSince2001());
    if (!statement.stepToEnd())
        m_connection.logFailure("storeTagVector", Phase::step);
}

std::optional<std::vector<float>> TagVectorRecords::loadTagVector(const QString &tag) const
{
    Statement statement(m_connection.handle(), "SELECT vector, dim FROM tag_vectors WHERE tag = ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("loadTagVector", Phase::prepare);
        return std::nullopt;
    }
    statement.bindText(1, tag);
    return statement.stepToRow() ? vectorOf(statement, 0, 1) : std::nullopt;
}

TagVectors TagVectorRecords::loadAllTagVectors() const
{
    Statement statement(m_connection.handle(), "SELECT tag, vector, dim FROM tag_vectors ORDER BY tag");
    if (!statement.isPrepared()) {
        m_connection.logFailure("loadAllTagVectors", Phase::prepare);
        return {};
    }
    TagVectors vectors;
    while (statement.stepToRow()) {
        const auto tag = statement.text(0);
        auto vector = vectorOf(statement, 1, 2);
        if (tag && vector)
            vectors.insert_or_assign(*tag, *std::move(vector));
    }
    return vectors;
}

void TagVectorRecords::cleanupObsoleteTagVectors(const QSet<QString> &validTags)
{
    Statement selection(m_connection.handle(), "SELECT tag FROM tag_vectors");
    if (!selection.isPrepared()) {
        Log::line(QStringLiteral("❌ cleanupObsoleteTagVectors select error: ") + m_connection.errorText());
        return;
    }
    QStringList obsolete = selection.remainingTexts();
    obsolete.removeIf([&validTags](const QString &tag) { return validTags.contains(tag); });
    if (obsolete.isEmpty())
        return;
    // The one statement that runs more than once: there may be a thousand tags.
    Statement removal(m_connection.handle(), "DELETE FROM tag_vectors WHERE tag = ?");
    if (!removal.isPrepared())
        return;
    for (const QString &tag : obsolete) {
        removal.bindText(1, tag);
        if (removal.stepToEnd())
            Log::line(QStringLiteral("🗑️ 删除过时标签向量: '") + tag + u'\'');
        removal.reset();
    }
}

} // namespace Qorvane
