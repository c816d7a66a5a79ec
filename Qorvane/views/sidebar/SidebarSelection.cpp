#include "views/sidebar/SidebarSelection.h"

#include "library/FolderTree.h"
#include "library/QorManage.h"
#include "library/SidebarItem.h"
#include "views/sidebar/SidebarRow.h"

#include <algorithm>
#include <utility>

namespace Qorvane {

SidebarSelection::SidebarSelection(QorManage &qorManager, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
{
    connect(&qorManager, &QorManage::selectedFolderChanged, this, &SidebarSelection::followFolder);
    connect(&qorManager, &QorManage::selectedTagChanged, this, &SidebarSelection::followTag);
    connect(&qorManager, &QorManage::selectedRatingChanged, this, &SidebarSelection::followRating);
    connect(&qorManager, &QorManage::libraryFoldersChanged, this, &SidebarSelection::forgetLostFolder);
    connect(&qorManager, &QorManage::favoriteFoldersChanged, this, &SidebarSelection::forgetLostFolder);
    markSelected();
}

// For a window that opens over a selection: to select it once more would load its list anew.
void SidebarSelection::markSelected()
{
    m_folder = m_qorManager.selectedFolder();
    m_tag = m_qorManager.selectedTag();
    m_rating = m_qorManager.selectedRating();
    if (m_tag)
        setId(m_tag);
    else if (m_rating)
        setId(ratingId(*m_rating));
    else if (m_folder)
        markFolder(*m_folder);
}

void SidebarSelection::setId(const std::optional<QString> &id)
{
    m_id = id;
    m_isFolder = isFolderOfLibrary();
    Q_EMIT idChanged();
}

void SidebarSelection::select(const std::optional<QString> &id)
{
    if (m_id == id && isInStep())
        return;
    setId(id);
    tellLibrary();
}

// The library may show what has no row: a folder below a root that left it. And it may have let go of a
// folder whose row stays: a sub-folder that was taken out by itself, a favourite whose root left.
bool SidebarSelection::isInStep() const
{
    if (!m_id)
        return !hasLibrarySelection();
    return hasLibrarySelection() || !isFolderOfLibrary() || !m_qorManager.folderForSidebarSelection(m_id);
}

bool SidebarSelection::hasLibrarySelection() const
{
    return m_qorManager.selectedTag() || m_qorManager.selectedRating() || m_qorManager.selectedFolder();
}

// The tag comes first, so one called "rating-3" is a tag.
void SidebarSelection::tellLibrary()
{
    const std::optional<QString> id = m_id; // what follows may change it
    if (id && m_qorManager.allTags().contains(*id)) {
        m_qorManager.setSelectedTag(id);
        m_qorManager.setSelectedFolder(std::nullopt);
        m_qorManager.setSelectedRating(std::nullopt);
    } else if (id && id->startsWith(ratingIdPrefix)) {
        selectRating();
    } else {
        m_qorManager.setSelectedTag(std::nullopt);
        m_qorManager.setSelectedRating(std::nullopt);
        // Finds nothing for a folder whose address holds a "-": such a row can be marked, but not opened.
        // Wanted.
        m_qorManager.setSelectedFolder(m_qorManager.folderForSidebarSelection(id));
    }
}

void SidebarSelection::selectRating()
{
    bool isNumber = false;
    const int rating = m_id->split(u'-', Qt::SkipEmptyParts).constLast().toInt(&isNumber);
    if (!isNumber)
        return;
    m_qorManager.setSelectedRating(rating);
    m_qorManager.setSelectedTag(std::nullopt);
    m_qorManager.setSelectedFolder(std::nullopt);
}

void SidebarSelection::followFolder()
{
    if (m_qorManager.selectedFolder() == m_folder)
        return;
    m_folder = m_qorManager.selectedFolder();
    // A row that the user chose stays marked, whatever the library makes of it. That is also what ends the
    // circle: the folder that gives way to a tag meets the tag's row here.
    if (!m_id && m_folder)
        markFolder(*m_folder);
}

// Only marked. The library has made room for its own folder already, and to ask it for the folder again, by
// the id, would lose one with a "-" in its address: the first folder that is added stays selected.
void SidebarSelection::markFolder(const Folder &folder)
{
    const bool isFavorite =
        std::ranges::any_of(m_qorManager.favoriteFolders(),
                            [&folder](const Folder &favorite) { return favorite.id() == folder.id(); });
    setId(SidebarItem{folder, isFavorite ? SidebarItem::ItemType::favorite : SidebarItem::ItemType::library}
              .id());
}

// The library took its tag or rating back. What it selected in that place is marked: the first folder, which
// may come while a tag or a rating is selected, stays selected.
void SidebarSelection::giveWay()
{
    if (const std::optional<Folder> folder = m_qorManager.selectedFolder())
        markFolder(*folder);
    else
        select(std::nullopt);
}

// An id without a row would keep the next folder that the library selects from being marked, and a click on
// the same folder, should it come back, from opening it. The library sees to its own selection: what it still
// shows has another row, or none.
void SidebarSelection::forgetLostFolder()
{
    const bool wasFolder = std::exchange(m_isFolder, isFolderOfLibrary());
    if (!wasFolder || m_isFolder)
        return;
    const std::optional<Folder> shown = m_qorManager.selectedFolder();
    if (shown && m_qorManager.folderWithAbsoluteString(shown->url.absoluteString()))
        markFolder(*shown);
    else
        setId(std::nullopt);
}

bool SidebarSelection::isFolderOfLibrary() const
{
    if (!m_id || m_qorManager.allTags().contains(*m_id))
        return false;
    const QString libraryPrefix = SidebarItem::idPrefix(SidebarItem::ItemType::library);
    if (m_id->startsWith(libraryPrefix))
        return FolderTree::findFolder(m_id->sliced(libraryPrefix.size()), m_qorManager.libraryFolders())
            .has_value();
    return std::ranges::any_of(m_qorManager.favoriteFolders(), [this](const Folder &favorite) {
        return SidebarItem{favorite, SidebarItem::ItemType::favorite}.id() == m_id;
    });
}

void SidebarSelection::followTag()
{
    if (m_qorManager.selectedTag() == m_tag)
        return;
    const std::optional<QString> last = std::exchange(m_tag, m_qorManager.selectedTag());
    if (m_tag)
        select(m_tag);
    // A tag that went with its last file is out of the list before it is deselected.
    else if (m_id && (m_id == last || m_qorManager.allTags().contains(*m_id)))
        giveWay();
}

void SidebarSelection::followRating()
{
    if (m_qorManager.selectedRating() == m_rating)
        return;
    m_rating = m_qorManager.selectedRating();
    if (m_rating)
        select(ratingId(*m_rating));
    // A tag called "rating-3" that takes a rating's place is no rating's row.
    else if (m_id && m_id->startsWith(ratingIdPrefix) && !m_qorManager.allTags().contains(*m_id))
        giveWay();
}

} // namespace Qorvane
