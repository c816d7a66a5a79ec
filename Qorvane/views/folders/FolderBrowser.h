#pragma once

#include "platform/LeavablePool.h"

#include <QAbstractListModel>
#include <QList>
#include <QSet>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

namespace Qorvane {

/// The folders in a folder, to choose some of them from: where the desktop has no panel for that. The disk is
/// read in the background, and a folder that doesn't answer is left for the next one. GUI thread.
class FolderBrowser : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    /// The folder whose folders are listed, once it has been read.
    Q_PROPERTY(QString path READ path NOTIFY pathChanged)
    Q_PROPERTY(bool hasParent READ hasParent NOTIFY pathChanged)
    Q_PROPERTY(int count READ count NOTIFY pathChanged)
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    /// The row that keys move from and act on, -1 for none. Announced after every new list, since views lose
    /// their own with the old one.
    Q_PROPERTY(int currentRow READ currentRow NOTIFY currentRowChanged)
    Q_PROPERTY(int selectionCount READ selectionCount NOTIFY selectionChanged)
    /// What the user has chosen: the selected folders in the order of the list, or without any the folder
    /// that is listed, unless that is the user's home or the root of all.
    Q_PROPERTY(QList<QUrl> chosen READ chosen NOTIFY selectionChanged)

public:
    enum Role {
        NameRole = Qt::UserRole + 1, ///< QString
        IsSelectedRole,              ///< bool
    };
    enum State {
        Reading,
        Listed,
        Unreadable, ///< what was listed before stays; until the next read or change of the selection
    };
    Q_ENUM(State)

    /// The names of the folders in the one at `path`, in the order to list them; nothing when that can't be
    /// read. Called on a background thread, where it may block for ever: it owns all that it uses.
    using Source = std::function<std::optional<QStringList>(const QString &path)>;

    /// Lists what is on disk.
    explicit FolderBrowser(QObject *parent = nullptr);
    explicit FolderBrowser(Source source, QObject *parent = nullptr);

    const QString &path() const { return m_path; }
    bool hasParent() const { return m_path.size() > 1; }
    int count() const { return int(m_names.size()); }
    State state() const { return m_state; }
    int currentRow() const { return m_currentRow; }
    int selectionCount() const { return int(m_selected.size()); }
    QList<QUrl> chosen() const;

    /// Lists the folder at `path`, the user's home when it is empty. The last call counts.
    Q_INVOKABLE void open(const QString &path = {});
    Q_INVOKABLE void openRow(int row);
    /// Lists the folder in the current row; nothing happens while that isn't selected, since it doesn't show.
    Q_INVOKABLE void openCurrentRow();
    /// Lists the folder around the present one, and selects that.
    Q_INVOKABLE void openParent();

    /// A click on a row: selects it alone; with Control, takes it in or out; with Shift, selects all from the
    /// last one that was clicked without.
    /// The row becomes the current one.
    Q_INVOKABLE void click(int row, Qt::KeyboardModifiers modifiers);
    /// As a click on the row `step` rows below the current one, or above it, as far as there are rows.
    /// Without a current row it is the first.
    Q_INVOKABLE void moveCurrentRow(int step, Qt::KeyboardModifiers modifiers);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void pathChanged();
    void stateChanged();
    void currentRowChanged();
    void selectionChanged();

private:
    void read(const QString &path, const QString &nameToSelect);
    void show(const QString &path, const QStringList &names, const QString &nameToSelect);
    void setState(State state);
    void setSelected(const QSet<int> &rows);

    const Source m_source;
    std::optional<LeavablePool> m_reader; // of the newest read alone
    QString m_path;
    QStringList m_names;
    State m_state = Listed;
    QSet<int> m_selected;
    int m_currentRow = -1;
    int m_anchor = 0;  // where a selection with Shift begins
    int m_reading = 0; // number of the newest read: what comes from older ones is dropped
};

} // namespace Qorvane
