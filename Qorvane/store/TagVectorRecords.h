#pragma once

#include <QSet>
#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace Qorvane {

class StoreConnection;

/// Vectors of tags' texts, by tag.
using TagVectors = std::map<QString, std::vector<float>>;

/// The rows of `tag_vectors`: the text embedding of each tag, kept from run to run. The bodies of the store's
/// operations of the same names, which document them; to be called on the store's queue.
class TagVectorRecords
{
public:
    explicit TagVectorRecords(const StoreConnection &connection)
        : m_connection(connection)
    {
    }

    /// `vector` is not empty.
    void storeTagVector(const QString &tag, const std::vector<float> &vector);
    std::optional<std::vector<float>> loadTagVector(const QString &tag) const;
    TagVectors loadAllTagVectors() const;
    void cleanupObsoleteTagVectors(const QSet<QString> &validTags);

private:
    const StoreConnection &m_connection;
};

} // namespace Qorvane
