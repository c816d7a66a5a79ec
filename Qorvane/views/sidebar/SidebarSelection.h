#pragma once

#include "library/Folder.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace Qorvane {

class QorManage;

/// The id of the sidebar's selected row, kept in step with the library's selected tag, rating and folder in
/// both directions. GUI thread.
class SidebarSelection : public QObject
{
    Q_OBJECT

public:
    /// `qorManager` outlives this object.
    explicit SidebarSelection(QorManage &qorManager, QObject *parent = nullptr);

    const std::optional<QString> &id() const { return m_id; }
    /// The user's choice; none deselects whatever the library has selected. One that is chosen already
    /// changes nothing, unless the library has let go of it.
    void select(const std::optional<QString> &id);

Q_SIGNALS:
    /// Before the library is told: whoever draws the rows marks the new one first.
    void idChanged();

private:
    void setId(const std::optional<QString> &id);
    void markSelected();
    void markFolder(const Folder &folder);
    void giveWay();
    void tellLibrary();
    void selectRating();
    void followFolder();
    void followTag();
    void followRating();
    void forgetLostFolder();
    bool isInStep() const;
    bool hasLibrarySelection() const;
    bool isFolderOfLibrary() const;

    QorManage &m_qorManager;
    std::optional<QString> m_id;
    // The row of a folder that the library has, folded away or not.
    bool m_isFolder = false;
    // What the library had selected last: it announces every write, equal ones too.
    std::optional<Folder> m_folder;
    std::optional<QString> m_tag;
    std::optional<int> m_rating;
};

} // namespace Qorvane
