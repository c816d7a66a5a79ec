#pragma once

#include "platform/FileUrl.h"
#include "views/VisibleRows.h"

#include <QAbstractListModel>
#include <QList>
#include <QSet>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace Qorvane {

class MediaSelection;

/// Media files as rows of a grid, in the order given. GUI thread.
class MediaListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        PathRole = Qt::UserRole + 1, ///< QString: the file's path
        NameRole,                    ///< QString: its last component
        IsVideoRole,                 ///< bool
        IsSelectedRole,              ///< bool
    };

    /// Whether a file is a video, by its name alone.
    using IsVideo = std::function<bool(const FileUrl &)>;

    /// `selection` outlives the model.
    MediaListModel(MediaSelection &selection, IsVideo isVideo, QObject *parent = nullptr);

    const QList<FileUrl> &urls() const { return m_urls; }
    /// Replaces the list. A list that only lost entries loses their rows and keeps the others in place; any
    /// other change rebuilds the grid from the top.
    void setUrls(const QList<FileUrl> &urls);
    int count() const { return int(m_urls.size()); }

    /// A click on a row's cell; see MediaSelection.
    Q_INVOKABLE void click(int row, bool isCommandHeld);
    /// A key pressed over the grid (Qt::Key): an arrow moves the selection. Gives the row to bring into view;
    /// -1 when the key isn't for the grid.
    Q_INVOKABLE int handleKey(int key, int columnCount);
    /// Tells which cells are in view; lengths in pixels, see visibleRows().
    Q_INVOKABLE void setViewport(double contentY, double viewHeight, double rowPitch, int columnCount);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    void visiblePathsChanged(const QSet<QString> &paths);

private:
    void removeAllBut(const QList<FileUrl> &urls);
    void announceSelection(const QSet<FileUrl> &before);

    MediaSelection &m_selection;
    IsVideo m_isVideo;
    QList<FileUrl> m_urls;
    RowRange m_visibleRows;
};

} // namespace Qorvane
