#include "views/sidebar/SidebarMenu.h"

#include "library/QorManage.h"

namespace Qorvane {

SidebarMenu::SidebarMenu(QorManage &qorManager, FolderOpener openFolder, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
    , m_openFolder(std::move(openFolder))
{
}

bool SidebarMenu::openFor(const SidebarRow &row)
{
    if (!row.isFolder() && row.kind != SidebarRow::Kind::tag)
        return false;
    m_row = row;
    Q_EMIT rowChanged();
    return true;
}

bool SidebarMenu::offersAddToFavorites() const
{
    return m_row.kind == SidebarRow::Kind::folder && !m_row.isFavorite;
}

bool SidebarMenu::offersRemoveFromFavorites() const
{
    return m_row.isFolder() && !offersAddToFavorites();
}

bool SidebarMenu::offersDelete() const
{
    return m_row.kind == SidebarRow::Kind::folder || m_row.kind == SidebarRow::Kind::tag;
}

void SidebarMenu::addToFavorites()
{
    // The library's own, with the tree below it; it may be gone while the menu was open.
    if (const auto folder = m_qorManager.folderWithAbsoluteString(m_row.url.absoluteString()))
        m_qorManager.addToFavorites(*folder);
}

void SidebarMenu::removeFromFavorites()
{
    m_qorManager.removeFromFavorites({m_row.url, std::nullopt});
}

void SidebarMenu::openInFinder()
{
    m_openFolder(m_row.url);
}

void SidebarMenu::remove()
{
    if (m_row.kind == SidebarRow::Kind::tag)
        m_qorManager.deleteTagGlobally(m_row.name);
    else if (const auto folder = m_qorManager.folderWithAbsoluteString(m_row.url.absoluteString()))
        m_qorManager.removeFolderFromLibrary(*folder);
}

} // namespace Qorvane
