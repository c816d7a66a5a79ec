#include "views/window/ContentViewState.h"

#include "library/QorManage.h"

#include <QTimer>

#include <chrono>
#include <utility>

namespace Qorvane {

namespace {

// A window that has just come up may not have the keys yet.
constexpr auto settling = std::chrono::milliseconds(100);

SearchSources searchSources(QorManage &qorManager, ContentViewState::Search search)
{
    return {[&qorManager] {
                return SearchScopeSettings{qorManager.selectedTag(), qorManager.selectedFolder(),
                                           qorManager.imageURLs()};
            },
            qorManager.pathsOfTag(), std::move(search)};
}

/// What to do when the library announces a write: `act`, if the value is another one. It announces equal
/// writes too, and the sidebar makes them: whoever picks a tag empties the other two.
template <typename Read, typename Act>
auto onChange(const QorManage &library, Read read, Act act)
{
    return [&library, read, act, last = (library.*read)()]() mutable {
        if (last == (library.*read)())
            return;
        last = (library.*read)();
        act();
    };
}

} // namespace

ContentViewState::ContentViewState(QorManage &qorManager, Search search,
                                   const std::shared_ptr<PictureQueue> &thumbnails, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
    , m_folderAdding(qorManager)
    , m_sidebar(qorManager)
    , m_search(searchSources(qorManager, std::move(search)))
    , m_pages(qorManager, m_search, m_selection, thumbnails)
    , m_selected(m_selection)
    , m_sorting(qorManager)
{
    const auto startOver = [this] { reset(); };
    connect(&m_qorManager, &QorManage::selectedFolderChanged, this,
            onChange(m_qorManager, &QorManage::selectedFolder, startOver));
    connect(&m_qorManager, &QorManage::selectedRatingChanged, this,
            onChange(m_qorManager, &QorManage::selectedRating, startOver));
    // A tag leaves the query and its results standing, on purpose: they stay those of the scope before until
    // the text changes. Where a folder was selected the query goes nonetheless, with the folder.
    connect(&m_qorManager, &QorManage::selectedTagChanged, this,
            onChange(m_qorManager, &QorManage::selectedTag, [this] { setDetailViewActive(false); }));
    connect(&m_search, &SearchController::searchBegan, this, [this] { setDetailViewActive(false); });
}

// Files stay selected while the grid shows another folder: only leaving an open file deselects.
void ContentViewState::reset()
{
    setDetailViewActive(false);
    m_search.reset();
}

void ContentViewState::setDetailViewActive(bool isActive)
{
    if (m_isDetailViewActive == isActive)
        return;
    m_isDetailViewActive = isActive;
    Q_EMIT isDetailViewActiveChanged();
    if (isActive) {
        m_focus.focus(FocusableField::detail);
        return;
    }
    m_focus.settleOn(FocusableField::sidebar);
    m_selection.clear();
}

void ContentViewState::appear()
{
    QTimer::singleShot(settling, this, [this] { m_focus.settleOn(FocusableField::sidebar); });
}

void ContentViewState::setInspectorCollapsed(bool isCollapsed)
{
    if (m_isInspectorCollapsed == isCollapsed)
        return;
    m_isInspectorCollapsed = isCollapsed;
    Q_EMIT isInspectorCollapsedChanged();
}

} // namespace Qorvane
