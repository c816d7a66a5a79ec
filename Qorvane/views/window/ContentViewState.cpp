#include "views/window/ContentViewState.h"

#include "library/QorManage.h"
#include "media/SupportedExtensions.h"
#include "platform/Localization.h"
#include "views/pictures/ThumbnailQueue.h"

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
                                   std::shared_ptr<ThumbnailQueue> thumbnails, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
    , m_folderAdding(qorManager)
    , m_sidebar(qorManager)
    , m_photos(m_selection, m_revisions, isVideoFile)
    , m_results(m_selection, m_revisions, isVideoFile)
    , m_search(searchSources(qorManager, std::move(search)))
    , m_selected(m_selection)
    , m_sorting(qorManager)
{
    for (MediaListModel *const model : {&m_photos, &m_results}) {
        connect(model, &MediaListModel::visiblePathsChanged, this,
                [thumbnails](const QSet<QString> &paths) { thumbnails->setVisiblePaths(paths); });
    }
    followLibrary();
    followSearch();
}

void ContentViewState::followLibrary()
{
    const auto takeImages = [this] {
        m_photos.setUrls(m_qorManager.imageURLs());
        updatePage();
    };
    connect(&m_qorManager, &QorManage::imageURLsChanged, this, takeImages);
    connect(&m_qorManager, &QorManage::isLoadingChanged, this, &ContentViewState::updatePage);
    const auto showAnother = [this] {
        updatePage();
        Q_EMIT titleChanged();
    };
    const auto startOver = [this, showAnother] {
        reset();
        showAnother();
    };
    connect(&m_qorManager, &QorManage::selectedFolderChanged, this,
            onChange(m_qorManager, &QorManage::selectedFolder, startOver));
    connect(&m_qorManager, &QorManage::selectedRatingChanged, this,
            onChange(m_qorManager, &QorManage::selectedRating, startOver));
    // A tag leaves the query and its results standing, on purpose: they stay those of the scope before until
    // the text changes. Where a folder was selected the query goes nonetheless, with the folder.
    connect(&m_qorManager, &QorManage::selectedTagChanged, this,
            onChange(m_qorManager, &QorManage::selectedTag, [this, showAnother] {
                setDetailViewActive(false);
                showAnother();
            }));
    takeImages();
}

// Files stay selected while the grid shows another folder: only leaving an open file deselects.
void ContentViewState::reset()
{
    setDetailViewActive(false);
    m_search.reset();
}

void ContentViewState::followSearch()
{
    connect(&m_search, &SearchController::searchBegan, this, [this] { setDetailViewActive(false); });
    connect(&m_search, &SearchController::resultsChanged, this, [this] {
        QList<FileUrl> urls;
        for (const SearchResult &result : m_search.results())
            urls.append(result.url);
        m_results.setUrls(urls);
        updatePage();
    });
    connect(&m_search, &SearchController::textChanged, this, &ContentViewState::updatePage);
    connect(&m_search, &SearchController::isSearchingChanged, this, &ContentViewState::updatePage);
}

QString ContentViewState::title() const
{
    if (const std::optional<QString> tag = m_qorManager.selectedTag())
        return *tag;
    if (const std::optional<int> rating = m_qorManager.selectedRating())
        return QStringLiteral("★").repeated(*rating);
    if (const std::optional<Folder> folder = m_qorManager.selectedFolder())
        return folder->url.lastPathComponent();
    return {};
}

QString ContentViewState::scope() const
{
    if (const std::optional<QString> tag = m_qorManager.selectedTag())
        return QStringLiteral("tag-") + *tag;
    if (const std::optional<int> rating = m_qorManager.selectedRating())
        return QStringLiteral("rating-%1").arg(*rating);
    if (const std::optional<Folder> folder = m_qorManager.selectedFolder())
        return QStringLiteral("folder-") + folder->url.path();
    return {};
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

void ContentViewState::updatePage()
{
    const GridPage::Page page = GridPage::pageFor({
        .showNormalPhotos = m_search.text().isEmpty(),
        .isSearching = m_search.isSearching(),
        .hasResults = !m_search.results().isEmpty(),
        .isLoading = m_qorManager.isLoading(),
        .hasTag = m_qorManager.selectedTag().has_value(),
        .hasRating = m_qorManager.selectedRating().has_value(),
        .hasFolder = m_qorManager.selectedFolder().has_value(),
        .hasImages = !m_qorManager.imageURLs().isEmpty(),
    });
    if (page == m_page)
        return;
    m_page = page;
    Q_EMIT pageChanged();
}

} // namespace Qorvane
