#include "views/search/SearchController.h"

#include "media/ImageMessages.h"
#include "platform/FileAttributes.h"
#include "platform/GlobalQueue.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"

#include <QCoroFuture>
#include <QFuture>
#include <QPointer>
#include <QPromise>
#include <QSet>

#include <memory>
#include <utility>

namespace Qorvane {

namespace {

// Store and disk are asked in the background: a tag may be on very many files.
QFuture<QList<FileUrl>> existingFilesOfTag(const SearchSources &sources, const QString &tag)
{
    const auto promise = std::make_shared<QPromise<QList<FileUrl>>>();
    promise->start();
    GlobalQueue::async(QualityOfService::userInitiated, [promise, pathsOfTag = sources.pathsOfTag, tag] {
        QList<FileUrl> urls;
        for (const QString &path : pathsOfTag(tag)) {
            if (fileExists(path))
                urls.append(FileUrl::file(path));
        }
        promise->addResult(urls);
        promise->finish();
    });
    return promise->future();
}

} // namespace

SearchController::SearchController(SearchSources sources, QObject *parent)
    : QObject(parent)
    , m_sources(std::move(sources))
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
            self->run(text);
    });
}

QCoro::Task<> SearchController::run(QString text)
{
    const QPointer self(this);
    const SearchSources sources = m_sources;
    const QList<FileUrl> scope = co_await candidates(sources);
    if (!self)
        co_return; // and with it what would search
    const QList<SearchResult> results = co_await sources.search(text, scope, limit);
    if (!self)
        co_return;
    // No look at the field: a search that ends late shows its results, whatever the text is by now.
    setResults(results);
    setSearching(false);
}

QCoro::Task<QList<FileUrl>> SearchController::candidates(SearchSources sources)
{
    const SearchScopeSettings settings = sources.scopeSettings();
    if (settings.selectedTag) {
        const QList<FileUrl> urls = co_await existingFilesOfTag(sources, *settings.selectedTag);
        Log::line(QStringLiteral("🔍 在tag '%1' 下的 %2 张照片中搜索")
                      .arg(*settings.selectedTag, QString::number(urls.size())));
        co_return urls;
    }
    if (settings.selectedFolder) {
        Log::line(QStringLiteral("🔍 在文件夹 '%1' 下的 %2 张照片中搜索")
                      .arg(settings.selectedFolder->url.lastPathComponent(),
                           QString::number(settings.imageURLs.size())));
        co_return settings.imageURLs;
    }
    // A selected rating plays no part: without a folder the search covers the whole library.
    Log::line(QStringLiteral("🔍 搜索全部照片"));
    co_return QList<FileUrl>();
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
