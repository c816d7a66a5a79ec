#include "views/SidebarSelection.h"

#include "library/QorManage.h"
#include "library/SidebarItem.h"

#include <algorithm>

namespace Qorvane {

namespace {

const QString ratingPrefix = QStringLiteral("rating-");

} // namespace

SidebarSelection::SidebarSelection(QorManage &qorManager, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
{
    connect(&qorManager, &QorManage::selectedFolderChanged, this, &SidebarSelection::followFolder);
    connect(&qorManager, &QorManage::selectedTagChanged, this, &SidebarSelection::followTag);
    connect(&qorManager, &QorManage::selectedRatingChanged, this, &SidebarSelection::followRating);
    followFolder();
    followTag();
    followRating();
}

void SidebarSelection::select(const std::optional<QString> &id)
{
    if (m_id == id)
        return;
    m_id = id;
    Q_EMIT idChanged();
    tellLibrary();
}

// The tag comes first, so one called "rating-3" is a tag.
void SidebarSelection::tellLibrary()
{
    const std::optional<QString> id = m_id; // what follows may change it
    if (id && m_qorManager.allTags().contains(*id)) {
        m_qorManager.setSelectedTag(id);
        m_qorManager.setSelectedFolder(std::nullopt);
        m_qorManager.setSelectedRating(std::nullopt);
    } else if (id && id->startsWith(ratingPrefix)) {
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
    if (m_id || !m_folder)
        return;
    const bool isFavorite =
        std::ranges::any_of(m_qorManager.favoriteFolders(),
                            [this](const Folder &favorite) { return favorite.id() == m_folder->id(); });
    m_id =
        SidebarItem{*m_folder, isFavorite ? SidebarItem::ItemType::favorite : SidebarItem::ItemType::library}
            .id();
    // Only marked. The library has made room for its own folder already, and to ask it for the folder again,
    // by the id, would lose one with a "-" in its address: the first folder that is added stays selected.
    Q_EMIT idChanged();
}

void SidebarSelection::followTag()
{
    if (m_qorManager.selectedTag() == m_tag)
        return;
    m_tag = m_qorManager.selectedTag();
    if (m_tag)
        select(m_tag);
    else if (m_id && m_qorManager.allTags().contains(*m_id))
        select(std::nullopt);
}

void SidebarSelection::followRating()
{
    if (m_qorManager.selectedRating() == m_rating)
        return;
    m_rating = m_qorManager.selectedRating();
    if (m_rating)
        select(ratingPrefix + QString::number(*m_rating));
    // A tag called "rating-3" that takes a rating's place is no rating's row.
    else if (m_id && m_id->startsWith(ratingPrefix) && !m_qorManager.allTags().contains(*m_id))
        select(std::nullopt);
}

} // namespace Qorvane
