#pragma once

#include "library/Folder.h"
#include "library/FolderProcessingState.h"

#include <QAbstractListModel>
#include <QList>
#include <QSet>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

namespace Qorvane {

/// What a folder's row shows of its background run.
struct FolderProgress
{
    FolderProcessingState state = FolderProcessingState::idle;
    double progress = 0; ///< 0 to 1
    QString detail;

    friend bool operator==(const FolderProgress &, const FolderProgress &) = default;
};

/// The library's folders as indented rows: each root with what is unfolded below it. GUI thread.
class FolderListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        NameRole = Qt::UserRole + 1, ///< QString
        ItemIdRole,                  ///< QString: the row's id in the sidebar
        DepthRole,                   ///< int: 0 for a root
        HasChildrenRole,             ///< bool
        IsExpandedRole,              ///< bool
        IsSelectedRole,              ///< bool
        StateRole,                   ///< State
        ProgressRole,                ///< double, 0 to 1
        DetailRole,                  ///< QString: the tooltip's text
    };
    /// FolderProcessingState for QML.
    enum State { Idle, Thumbnails, Vectors, Completed };
    Q_ENUM(State)

    /// Answers for a folder what its row shows. Called often.
    using ProgressSource = std::function<FolderProgress(const FileUrl &folder)>;

    explicit FolderListModel(ProgressSource progressSource, QObject *parent = nullptr);

    /// Replaces the folders. What is unfolded stays so, as long as the folder is there.
    void setFolders(const QList<Folder> &roots);
    /// Marks the row with this sidebar id; none marks no row.
    void setSelectedId(const std::optional<QString> &id);
    /// Asks the progress source again for every row.
    void refreshProgress();
    int count() const { return int(m_rows.size()); }

    /// Unfolds or folds the row's sub-folders.
    Q_INVOKABLE void toggle(int row);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();

private:
    struct Row
    {
        FileUrl url;
        int depth = 0;
        bool hasChildren = false;
        FolderProgress progress;

        friend bool operator==(const Row &, const Row &) = default;
    };

    void appendRows(QList<Row> &rows, const Folder &folder, int depth) const;
    QList<Row> flattened() const;
    bool isExpanded(const Row &row) const { return m_expanded.contains(row.url.absoluteString()); }
    static QString itemId(const FileUrl &url);

    ProgressSource m_progressSource;
    QList<Folder> m_roots;
    QSet<QString> m_expanded; // absolute texts
    std::optional<QString> m_selectedId;
    QList<Row> m_rows;
};

} // namespace Qorvane
