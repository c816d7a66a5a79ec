#pragma once

#include "platform/FileUrl.h"
#include "views/grid/VisibleRows.h"

#include <QAbstractListModel>
#include <QList>
#include <QMultiHash>
#include <QSet>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

namespace Qorvane {

class MediaSelection;
class ThumbnailRevisions;

/// Media files as rows of a grid, in the order given. GUI thread.
class MediaListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// -1 when none is selected.
    Q_PROPERTY(int firstSelectedRow READ firstSelectedRow NOTIFY firstSelectedRowChanged)
    /// Row of the cell that arrow keys start from: the first one selected, the first of all when none is; -1
    /// without cells.
    Q_PROPERTY(int currentRow READ currentRow NOTIFY firstSelectedRowChanged)

public:
    enum Role {
        PathRole = Qt::UserRole + 1, ///< QString: the file's path
        NameRole,                    ///< QString: its last component
        IsVideoRole,                 ///< bool
        IsSelectedRole,              ///< bool
        RevisionRole,                ///< int: see ThumbnailRevisions
    };

    /// Whether a file is a video, by its name alone.
    using IsVideo = std::function<bool(const FileUrl &)>;

    /// `selection` and `revisions` outlive the model.
    MediaListModel(MediaSelection &selection, const ThumbnailRevisions &revisions, IsVideo isVideo,
                   QObject *parent = nullptr);

    const QList<FileUrl> &urls() const { return m_urls; }
    /// Replaces the list. A list that only lost entries loses their rows and keeps the others in place; any
    /// other change gives the rows other files, and adds or removes rows at the end. The model is never
    /// reset: cells are dear to make, and a reset throws all of them away.
    void setUrls(const QList<FileUrl> &urls);
    int count() const { return int(m_urls.size()); }
    int firstSelectedRow() const;
    int currentRow() const;

    /// The file's path; empty for a row that isn't there.
    Q_INVOKABLE QString path(int row) const;
    /// A click on a row's cell; see MediaSelection.
    Q_INVOKABLE void click(int row, bool isCommandHeld);
    /// A double click on a row's cell: it is the only one selected then.
    Q_INVOKABLE void selectAlone(int row);
    /// A key pressed over the grid (Qt::Key): an arrow moves the selection. Gives the row to bring into view;
    /// -1 when the key isn't for the grid.
    Q_INVOKABLE int handleKey(int key, int columnCount);
    /// Tells which cells are in view; lengths in pixels, see visibleRows().
    Q_INVOKABLE void setViewport(double contentY, double viewHeight, double rowPitch, int columnCount);
    /// The grid is hidden: the next viewport is told even if it is the same. Tells nothing itself, since
    /// another grid may be in view by now.
    Q_INVOKABLE void leaveViewport() { m_visibleRows = {}; }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    /// The list is another one, maybe of the same length.
    void urlsChanged();
    void countChanged();
    void firstSelectedRowChanged();
    void visiblePathsChanged(const QSet<QString> &paths);

private:
    void removeAllBut(const QList<FileUrl> &urls);
    void replaceAll(const QList<FileUrl> &urls);
    void forgetRows();
    const QMultiHash<FileUrl, int> &rows() const;
    void announceSelection(const QSet<FileUrl> &before);
    void announceRevision(const FileUrl &url);

    MediaSelection &m_selection;
    const ThumbnailRevisions &m_revisions;
    IsVideo m_isVideo;
    QList<FileUrl> m_urls;
    // Lists are long, and a held arrow asks often: both made when first asked for.
    mutable QMultiHash<FileUrl, int> m_rows;
    mutable std::optional<int> m_firstSelectedRow;
    RowRange m_visibleRows;
};

} // namespace Qorvane
