#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace Qorvane {

class StoreConnection;

/// The rows of `image_tags`: one per path and tag. The bodies of the store's operations of the same names,
/// which document them; to be called on the store's queue.
class TagRecords
{
public:
    explicit TagRecords(const StoreConnection &connection)
        : m_connection(connection)
    {
    }

    /// `tag` is trimmed and not empty.
    void addTag(const QString &path, const QString &tag);
    void removeTag(const QString &path, const QString &tag);
    /// `newTag` is trimmed and not empty.
    void replaceTag(const QString &path, const QString &oldTag, const QString &newTag);
    void deleteTagGlobally(const QString &tag);
    QStringList getTags(const QString &path) const;
    QStringList listAllTags() const;
    /// The first `most` tags that LIKE finds with `prefix` before anything, wildcards of the user's included.
    QStringList searchTags(const QString &prefix, int most) const;
    int getTagCount(const QString &tag) const;
    QHash<QString, int> getAllTagCounts() const;
    QStringList fetchPathsByTag(const QString &tag) const;

private:
    const StoreConnection &m_connection;
};

} // namespace Qorvane
