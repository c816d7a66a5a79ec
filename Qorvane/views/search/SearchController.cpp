#include "views/search/SearchController.h"

#include "library/MediaListing.h"
#include "media/ImageMessages.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"

#include <QPointer>
#include <QSet>

#include <limits>
#include <utility>

namespace Qorvane {

namespace {

// Each search reads the files of its tag on a thread of its own: one whose files lie on a drive that doesn't
// answer holds up no other.
constexpr int readerCount = std::numeric_limits<int>::max();

} // namespace

SearchController::SearchController(SearchSources sources, QObject *parent)
    : QObject(parent)
    , m_sources(std::move(sources))
    , m_readers(QualityOfService::userInitiated, readerCount)
{
    m_deletionToken = NotificationCenter::defaultCenter().addObserver(
        ImageMessages::deletedName, ObserverQueue::main, [this](const Notification &notification) {
            removeResults(notification.userInfo.value(ImageMessages::pathsKey).toStringList());
        });
}

SearchController::~SearchController()
{
    NotificationCenter::defaultCenter().removeObserver(m_deletionToken);
}

void SearchController::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    // Before anybody hears of the text: a look in between would show that it found nothing.
    const bool isFirst = !text.isEmpty() && !std::exchange(m_isSearching, true);
    Q_EMIT textChanged();
    if (text.isEmpty()) {
        setResults({});
        return;
    }
    Q_EMIT searchBegan();
    if (isFirst)
        Q_EMIT isSearchingChanged();
    queueSearch();
}

void SearchController::searchAgain()
{
    if (m_text.isEmpty())
        return;
    setSearching(true);
    queueSearch();
}

void SearchController::reset()
{
    setText({});
    setResults({});
    setSearching(false);
}

void SearchController::queueSearch()
{
    MainQueue::async([self = QPointer(this), text = m_text] {
        if (self)
            self->begin(text);
    });
}

void SearchController::begin(const QString &text)
{
    const SearchScopeSettings settings = m_sources.scopeSettings();
    if (settings.selectedTag) {
        beginInTag(text, *settings.selectedTag);
    } else if (settings.selectedFolder) {
        Log::line(QStringLiteral("🔍 在文件夹 '%1' 下的 %2 张照片中搜索")
                      .arg(settings.selectedFolder->url.lastPathComponent(),
                           QString::number(settings.imageURLs.size())));
        search(text, settings.imageURLs);
    } else {
        // A selected rating plays no part: without a folder the search covers the whole library.
        Log::line(QStringLiteral("🔍 搜索全部照片"));
        search(text, {});
    }
}

// Store and disk are asked in the background: a tag may be on very many files.
void SearchController::beginInTag(const QString &text, const QString &tag)
{
    m_readers.start([self = QPointer(this), pathsOfTag = m_sources.pathsOfTag, text, tag] {
        MainQueue::async([self, text, tag, files = MediaListing::existingFiles(pathsOfTag(tag))] {
            if (!self)
                return;
            Log::line(
                QStringLiteral("🔍 在tag '%1' 下的 %2 张照片中搜索").arg(tag, QString::number(files.size())));
            self->search(text, files);
        });
    });
}

QCoro::Task<> SearchController::search(QString text, QList<FileUrl> scope)
{
    const QPointer self(this);
    const SearchSources sources = m_sources;
    const QList<SearchResult> results = co_await sources.search(text, scope, limit);
    if (!self)
        co_return;
    // No look at the field: a search that ends late shows its results, whatever the text is by now.
    setResults(results);
    setSearching(false);
}

void SearchController::setResults(const QList<SearchResult> &results)
{
    if (m_results == results)
        return;
    m_results = results;
    Q_EMIT resultsChanged();
}

void SearchController::setSearching(bool isSearching)
{
    if (m_isSearching == isSearching)
        return;
    m_isSearching = isSearching;
    Q_EMIT isSearchingChanged();
}

void SearchController::removeResults(const QStringList &paths)
{
    const QSet<QString> deleted(paths.cbegin(), paths.cend());
    QList<SearchResult> kept = m_results;
    kept.removeIf([&deleted](const SearchResult &result) { return deleted.contains(result.url.path()); });
    setResults(kept);
}

} // namespace Qorvane
