#pragma once

#include "views/sidebar/SidebarSections.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace Qorvane {

/// The whole sidebar as one list of rows: headers, favourites, the library's folders as far as they are
/// unfolded, ratings, tags. Changes move only the rows they touch, so that the list keeps its place. GUI
/// thread.
class SidebarListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")

public:
    enum Role {
        KindRole = Qt::UserRole + 1, ///< Kind
        NameRole,                    ///< QString: a header's text, a folder's name, stars, a tag
        DepthRole,                   ///< int: 0 for a root
        HasChildrenRole,             ///< bool
        IsExpandedRole,              ///< bool
        IsSelectedRole,              ///< bool
        IsFavoriteRole,              ///< bool: a folder of the library with a star
        StateRole,                   ///< State
        ProgressRole,                ///< double, 0 to 1
        PercentRole,                 ///< QString: the progress as the caption says it
        DetailRole,                  ///< QString: the tooltip's text
        CountRole,                   ///< QString: empty while it isn't known
        SpokenRole,                  ///< QString: the name for screen readers, with its count
    };
    /// SidebarRow::Kind for QML.
    enum Kind { Header, Favorite, LibraryFolder, Rating, Tag, NoTags };
    Q_ENUM(Kind)
    /// FolderProcessingState for QML.
    enum State { Idle, Thumbnails, Vectors, Completed };
    Q_ENUM(State)

    using ProgressSource = SidebarSections::ProgressSource;

    /// `progressSource` is called often.
    explicit SidebarListModel(ProgressSource progressSource, QObject *parent = nullptr);

    /// Replaces the folders. What is unfolded stays so as long as the program runs.
    void setFolders(const QList<Folder> &favorites, const QList<Folder> &roots);
    void setTags(const QStringList &tags);
    void setCounts(const TagAndRatingCounts &counts);
    /// Marks the rows with this id; none marks no row. Where a tag has the id, the tag alone is marked.
    void setSelectedId(const std::optional<QString> &id);
    /// Asks the progress source again for every folder.
    void refreshProgress();
    /// Unfolds or folds the row's sub-folders.
    void toggle(int row);

    const QList<SidebarRow> &rows() const { return m_rows; }
    bool isSelected(const SidebarRow &row) const;
    /// The first row that is marked; -1 when none shows.
    int selectedRow() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    void showFolders();
    void replaceRows(int first, int count, const QList<SidebarRow> &rows);
    void announce(const QList<int> &changedRows, const QList<int> &roles);

    const ProgressSource m_progressSource;
    SidebarContent m_content;
    std::optional<QString> m_selectedId;
    bool m_isTagSelected = false;
    QList<SidebarRow> m_rows;
    int m_folderRowCount = 0; ///< the rows before the ratings' header
};

} // namespace Qorvane
