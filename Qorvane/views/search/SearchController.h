#pragma once

#include "library/Folder.h"
#include "platform/FileUrl.h"
#include "platform/LeavablePool.h"
#include "platform/NotificationCenter.h"
#include "semantic/SearchResult.h"

#include <QCoroTask>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

namespace Qorvane {

/// What the search field reads of the library when a search begins.
struct SearchScopeSettings
{
    std::optional<QString> selectedTag;
    std::optional<Folder> selectedFolder;
    QList<FileUrl> imageURLs;
};

/// Where a search gets what it needs.
struct SearchSources
{
    /// GUI thread.
    std::function<SearchScopeSettings()> scopeSettings;
    /// The paths that carry a tag, in the store's order. Called on a background thread, where it may block
    /// for ever: it owns all that it uses.
    std::function<QStringList(const QString &tag)> pathsOfTag;
    /// The best matches among `scope` (empty: everything), best first. GUI thread.
    std::function<QCoro::Task<QList<SearchResult>>(QString text, QList<FileUrl> scope, int limit)> search;
};

/// The search field: every change of its text starts a search, and nothing stops one. Searches overlap, and
/// the last to finish wins, even if it began earlier. GUI thread.
class SearchController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool isSearching READ isSearching NOTIFY isSearchingChanged)

public:
    /// As many hits as fit a look or two; the ranking behind it is not meant to be paged through.
    static constexpr int limit = 20;

    explicit SearchController(SearchSources sources, QObject *parent = nullptr);
    ~SearchController() override;

    const QString &text() const { return m_text; }
    /// An empty text drops the results at once, but leaves `isSearching` to the searches still running.
    void setText(const QString &text);
    bool isSearching() const { return m_isSearching; }
    const QList<SearchResult> &results() const { return m_results; }

    /// Searches for what stands in the field once more, as after a change of what searches are answered with.
    void searchAgain();

    /// Back to the empty field, as another folder or rating asks for.
    void reset();

Q_SIGNALS:
    void textChanged();
    void isSearchingChanged();
    void resultsChanged();
    /// A text came into the field, and its search is about to run: `isSearching` is set, and announced next.
    void searchBegan();

private:
    void queueSearch();
    void begin(const QString &text);
    void beginInTag(const QString &text, const QString &tag);
    QCoro::Task<> search(QString text, QList<FileUrl> scope);
    void setResults(const QList<SearchResult> &results);
    void setSearching(bool isSearching);
    void removeResults(const QStringList &paths);

    const SearchSources m_sources;
    LeavablePool m_readers;
    QString m_text;
    bool m_isSearching = false;
    QList<SearchResult> m_results;
    NotificationCenter::Token m_deletionToken;
};

} // namespace Qorvane
