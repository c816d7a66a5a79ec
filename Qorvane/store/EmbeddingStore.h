#pragma once

#include "platform/SerialQueue.h"
#include "store/ImageVectorRecords.h"
#include "store/ImageVectorRow.h"
#include "store/RatingRecords.h"
#include "store/SettingRecords.h"
#include "store/StoreConnection.h"
#include "store/TagRecords.h"
#include "store/TagVectorRecords.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>
#include <type_traits>
#include <vector>

namespace Qorvane {

/// The single owner of the application's one SQLite database: image vectors, tags and ratings, all keyed by
/// the file's path exactly as it stands, the vectors of tags' texts, and settings.
///
/// Every operation runs on the store's queue and blocks its caller until it is done; any thread may call, but
/// not from inside a visitor of `scanVectors`. No operation throws or returns an error: a failure ends in one
/// line on the log and a neutral result (empty, absent, false, 0).
class EmbeddingStore
{
public:
    using VectorVisitor = ImageVectorRecords::Visitor;

    /// The one store of the process, made on first use.
    static EmbeddingStore &shared();

    /// Opens the database "Qorvane/embeddings.sqlite3" in the user's application data and creates what is
    /// missing of folder, file and tables. A store that couldn't be opened lives on, and each operation
    /// fails.
    EmbeddingStore();

    /// Writes the row of `path` or replaces all its other columns; tags and ratings stay. `vector` holds
    /// `dim` floats; `mtime` is in seconds since 1970. A corrupt database is replaced by an empty one, and
    /// this vector is lost with it.
    void upsert(const QString &path, const std::optional<QString> &thumbnailPath,
                const std::vector<float> &vector, int dim, double mtime);
    /// Whether the row of `path` carries exactly `mtime`, with no tolerance.
    bool isUpToDate(const QString &path, double mtime);

    /// The rows of `paths`, in SQLite's order; paths without a row are absent.
    std::vector<ImageVectorRow> fetch(const QStringList &paths);
    /// Every row, in SQLite's order, all vectors in memory at once.
    std::vector<ImageVectorRow> fetchAll();
    /// Shows `visitor` the rows that `fetch` of `scope` would give, or `fetchAll` for an empty scope, in the
    /// same order and with the same failure lines, one after the other and without copying them. The visitor
    /// runs on the store's queue while the caller waits.
    void scanVectors(const QStringList &scope, const VectorVisitor &visitor);

    int getImageCount();
    int getTagVectorCount();

    /// Removes vectors, tags and ratings of `paths`. Three statements without a transaction: a failure leaves
    /// the later tables as they are. (The operation "delete", which is no name in this language.)
    void deletePaths(const QStringList &paths);
    /// Removes vectors, tags and ratings of every file below `folderPath`, at any depth.
    void deleteFolder(const QString &folderPath);
    /// The paths of the rows below the folder `prefix`.
    QStringList fetchPathsWithPrefix(const QString &prefix);
    /// Logs whether rows below `folderPath` are left, and which.
    void verifyFolderDeletion(const QString &folderPath);
    /// Logs the number of rows.
    void printStatistics();

    /// Gives the file a tag, trimmed of blanks around it; nothing happens when nothing is left of it. Case
    /// counts.
    void addTag(const QString &path, const QString &tag);
    void removeTag(const QString &path, const QString &tag);
    /// Changes one tag of one file. A new tag that differs from the old one in case only, or in whether
    /// accents are composed, changes nothing.
    void replaceTag(const QString &path, const QString &oldTag, const QString &newTag);
    /// Takes the tag from all files.
    void deleteTagGlobally(const QString &tag);
    /// Every tag in use, ordered without regard to the case of ASCII letters.
    QStringList listAllTags();
    /// The tags of one file, in the order of `listAllTags`.
    QStringList getTags(const QString &path);
    /// At most `limit` suggestions for a tag that begins with `prefix`, without regard to case: the tags in
    /// use and, if wanted, the predefined ones of the user's language, in turns. "%" and "_" in the prefix
    /// stand for anything among the tags in use. None of those for 50,000 bytes of UTF-8 or more.
    QStringList searchTags(const QString &prefix, int limit, bool includePredefined);
    /// How many files carry the tag.
    int getTagCount(const QString &tag);
    /// The same for every tag in use at once, by tag: for views that show them all.
    QHash<QString, int> getAllTagCounts();
    QStringList fetchPathsByTag(const QString &tag);

    /// Sets 1 to 5 stars; absent, or any other number, removes the rating.
    void setRating(const QString &path, std::optional<int> rating);
    void clearRating(const QString &path);
    /// Nothing without a rating, and nothing after a failure: the caller can't tell the two apart.
    std::optional<int> getRating(const QString &path);
    /// How many files have so many stars.
    int getRatingCount(int rating);
    /// The same for all numbers of stars at once, by number; those that no file has are absent.
    QHash<int, int> getAllRatingCounts();
    QStringList fetchPathsByRating(int rating);

    /// Keeps the embedding of a tag's text, in place of an earlier one; an empty one changes nothing.
    void storeTagVector(const QString &tag, const std::vector<float> &vector);
    /// Nothing for a tag without one.
    std::optional<std::vector<float>> loadTagVector(const QString &tag);
    TagVectors loadAllTagVectors();
    /// Removes the vectors of all tags that aren't in `validTags`, to the letter, with a log line for each.
    void cleanupObsoleteTagVectors(const QSet<QString> &validTags);

    /// Texts that have to live and go with the database; preferences lie elsewhere.
    void setSetting(const QString &key, const QString &value);
    /// Nothing for an unknown key, and nothing after a failure.
    std::optional<QString> getSetting(const QString &key);
    void deleteSetting(const QString &key);

private:
    /// Runs `body` on the queue and gives its result.
    template <typename Body>
    std::invoke_result_t<Body> onQueue(const Body &body);

    StoreConnection m_connection;
    ImageVectorRecords m_images;
    TagRecords m_tags;
    RatingRecords m_ratings;
    TagVectorRecords m_tagVectors;
    SettingRecords m_settings;
    SerialQueue m_queue; // last: its thread ends before what it works on goes
};

} // namespace Qorvane
