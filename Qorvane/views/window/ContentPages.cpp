#include "views/window/ContentPages.h"

#include "library/QorManage.h"
#include "media/SupportedExtensions.h"
#include "views/pictures/PictureQueue.h"
#include "views/search/SearchController.h"

#include <utility>

namespace Qorvane {

ContentPages::ContentPages(QorManage &qorManager, SearchController &search, MediaSelection &selection,
                           const std::shared_ptr<PictureQueue> &thumbnails, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
    , m_search(search)
    , m_photos(selection, m_revisions, isVideoFile)
    , m_results(selection, m_revisions, isVideoFile)
    , m_scope(selectedScope())
{
    for (MediaListModel *const model : {&m_photos, &m_results}) {
        connect(model, &MediaListModel::visiblePathsChanged, this,
                [thumbnails](const QSet<QString> &paths) { thumbnails->setVisiblePaths(paths); });
    }
    connect(&m_qorManager, &QorManage::imageURLsChanged, this, &ContentPages::takeImages);
    connect(&m_qorManager, &QorManage::isLoadingChanged, this, &ContentPages::updatePage);
    connect(&m_qorManager, &QorManage::selectedFolderChanged, this, &ContentPages::takeScope);
    connect(&m_qorManager, &QorManage::selectedRatingChanged, this, &ContentPages::takeScope);
    connect(&m_qorManager, &QorManage::selectedTagChanged, this, &ContentPages::takeScope);
    connect(&m_search, &SearchController::resultsChanged, this, &ContentPages::takeResults);
    connect(&m_search, &SearchController::textChanged, this, &ContentPages::updatePage);
    connect(&m_search, &SearchController::isSearchingChanged, this, &ContentPages::updatePage);
    takeImages();
}

void ContentPages::takeImages()
{
    m_photos.setUrls(m_qorManager.imageURLs());
    updatePage();
}

void ContentPages::takeResults()
{
    QList<FileUrl> urls;
    for (const SearchResult &result : m_search.results())
        urls.append(result.url);
    m_results.setUrls(urls);
    updatePage();
}

void ContentPages::takeScope()
{
    ShownScope scope = selectedScope();
    // The library announces equal writes too, and the sidebar makes them: whoever picks a tag empties the
    // other two.
    if (scope == m_scope)
        return;
    m_scope = std::move(scope);
    updatePage();
    Q_EMIT scopeChanged();
}

ShownScope ContentPages::selectedScope() const
{
    return ShownScope::of(m_qorManager.selectedTag(), m_qorManager.selectedRating(),
                          m_qorManager.selectedFolder());
}

void ContentPages::updatePage()
{
    const ContentPage::Page page = ContentPage::pageFor({
        .showNormalPhotos = m_search.text().isEmpty(),
        .isSearching = m_search.isSearching(),
        .hasResults = !m_search.results().isEmpty(),
        .isLoading = m_qorManager.isLoading(),
        .scope = m_scope.kind,
        .hasImages = !m_qorManager.imageURLs().isEmpty(),
    });
    if (page == m_page)
        return;
    m_page = page;
    Q_EMIT pageChanged();
}

} // namespace Qorvane
