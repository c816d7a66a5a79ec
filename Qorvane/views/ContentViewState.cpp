#include "views/ContentViewState.h"

#include "library/QorManage.h"
#include "library/SidebarItem.h"
#include "platform/FileAttributes.h"
#include "platform/GlobalQueue.h"
#include "platform/Localization.h"
#include "platform/MainQueue.h"
#include "store/EmbeddingStore.h"
#include "views/ThumbnailQueue.h"

#include <QPointer>

#include <chrono>

namespace Qorvane {

namespace {

// A run reports every file, and skips thousands in a second; nobody sees more than a frame's worth of them.
constexpr auto frame = std::chrono::milliseconds(16);
// A window that has just come up may not have the keys yet.
constexpr auto settling = std::chrono::milliseconds(100);

bool isVideo(const FileUrl &url)
{
    return QorManage::supportedVideoExtensions().contains(url.pathExtension().toLower());
}

SearchSources searchSources(QorManage &qorManager, ContentViewState::Search search)
{
    return {[&qorManager] {
                return SearchScopeSettings{qorManager.selectedTag(), qorManager.selectedFolder(),
                                           qorManager.imageURLs()};
            },
            [](const QString &tag) { return EmbeddingStore::shared().fetchPathsByTag(tag); },
            std::move(search)};
}

} // namespace

ContentViewState::ContentViewState(QorManage &qorManager, Search search,
                                   std::shared_ptr<ThumbnailQueue> thumbnails, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
    , m_folders([this](const FileUrl &folder) { return progressOf(folder); })
    , m_photos(m_selection, m_revisions, isVideo)
    , m_results(m_selection, m_revisions, isVideo)
    , m_search(searchSources(qorManager, std::move(search)))
    , m_selected(m_selection)
    , m_sorting(qorManager)
{
    for (MediaListModel *const model : {&m_photos, &m_results}) {
        connect(model, &MediaListModel::visiblePathsChanged, this,
                [thumbnails](const QSet<QString> &paths) { thumbnails->setVisiblePaths(paths); });
    }
    connect(&m_folderPanel, &FolderPanel::chosen, this, &ContentViewState::addFolders);
    connect(&m_folderPanel, &FolderPanel::unavailable, this, &ContentViewState::folderPanelUnavailable);
    followLibrary();
    followSearch();
}

void ContentViewState::followLibrary()
{
    const auto takeFolders = [this] { m_folders.setFolders(m_qorManager.libraryFolders()); };
    const auto takeImages = [this] {
        m_photos.setUrls(m_qorManager.imageURLs());
        updatePage();
    };
    // From the first report on, not from the last: a flood of them must not hold the refresh back.
    m_progressRefresh.setSingleShot(true);
    m_progressRefresh.setInterval(frame);
    connect(&m_progressRefresh, &QTimer::timeout, &m_folders, &FolderListModel::refreshProgress);
    const auto refreshProgress = [this] {
        if (!m_progressRefresh.isActive())
            m_progressRefresh.start();
    };
    connect(&m_qorManager, &QorManage::libraryFoldersChanged, this, takeFolders);
    connect(&m_qorManager, &QorManage::imageURLsChanged, this, takeImages);
    connect(&m_qorManager, &QorManage::isLoadingChanged, this, &ContentViewState::updatePage);
    // The last of the three that every report writes: by then they belong together.
    connect(&m_qorManager, &QorManage::folderProcessingDetailsChanged, this, refreshProgress);
    connect(&m_qorManager, &QorManage::selectedFolderChanged, this, [this] {
        reset();
        markSelectedFolder();
        updatePage();
        Q_EMIT titleChanged();
    });
    connect(&m_qorManager, &QorManage::selectedRatingChanged, this, [this] {
        reset();
        updatePage();
        Q_EMIT titleChanged();
    });
    // A tag leaves the query and its results standing, on purpose: they stay those of the scope before until
    // the text changes.
    connect(&m_qorManager, &QorManage::selectedTagChanged, this, [this] {
        setDetailViewActive(false);
        updatePage();
        Q_EMIT titleChanged();
    });
    takeFolders();
    takeImages();
    markSelectedFolder();
}

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

void ContentViewState::chooseFolders()
{
    m_folderPanel.open(localized("Add Folder"));
}

void ContentViewState::addFolders(const QList<QUrl> &urls)
{
    // Off the GUI thread: a folder may lie on a server that doesn't answer.
    // For the library, not for this: the window may be closed meanwhile.
    GlobalQueue::async(QualityOfService::userInitiated, [library = QPointer(&m_qorManager), urls] {
        QList<FileUrl> folders;
        for (const QUrl &url : urls) {
            if (url.isLocalFile() && directoryExists(url.toLocalFile()))
                folders.append(FileUrl::directory(url.toLocalFile()));
        }
        MainQueue::async([library, folders] {
            if (!library)
                return;
            for (const FileUrl &folder : folders)
                library->addFolder(folder);
        });
    });
}

void ContentViewState::selectSidebarItem(const QString &id)
{
    if (m_sidebarSelection == id)
        return;
    m_sidebarSelection = id;
    m_folders.setSelectedId(id);
    m_qorManager.setSelectedTag(std::nullopt);
    m_qorManager.setSelectedRating(std::nullopt);
    // Finds nothing for a folder whose address holds a "-": such a row can be marked, but not opened. Wanted.
    m_qorManager.setSelectedFolder(m_qorManager.folderForSidebarSelection(id));
}

void ContentViewState::markSelectedFolder()
{
    // A row that the user chose stays marked, whatever the library makes of it.
    const std::optional<Folder> folder = m_qorManager.selectedFolder();
    if (m_sidebarSelection || !folder)
        return;
    m_sidebarSelection = SidebarItem{*folder, SidebarItem::ItemType::library}.id();
    m_folders.setSelectedId(m_sidebarSelection);
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

FolderProgress ContentViewState::progressOf(const FileUrl &folder) const
{
    const QString &path = folder.path();
    return {m_qorManager.processingState(folder), m_qorManager.folderProcessingProgress().value(path, 0),
            m_qorManager.folderProcessingDetails().value(path)};
}

} // namespace Qorvane
