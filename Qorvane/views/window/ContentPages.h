#pragma once

#include "views/grid/MediaListModel.h"
#include "views/pictures/ThumbnailRevisions.h"
#include "views/window/ContentPage.h"
#include "views/window/ShownScope.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace Qorvane {

class MediaSelection;
class QorManage;
class SearchController;
class PictureQueue;

/// What the middle column shows: the photographs of what is selected in the library, the hits of a search, or
/// a page that says why there are none. GUI thread.
class ContentPages : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(Qorvane::MediaListModel *photos READ photos CONSTANT)
    Q_PROPERTY(Qorvane::MediaListModel *results READ results CONSTANT)
    Q_PROPERTY(Qorvane::ContentPage::Page page READ page NOTIFY pageChanged)
    /// The selected tag, rating or folder; empty with none of them.
    Q_PROPERTY(QString title READ title NOTIFY scopeChanged)
    /// Another text for each tag, rating and folder.
    Q_PROPERTY(QString scope READ scope NOTIFY scopeChanged)

public:
    /// The library, the search and the selection outlive this object; `thumbnails` learns which cells are in
    /// view.
    ContentPages(QorManage &qorManager, SearchController &search, MediaSelection &selection,
                 const std::shared_ptr<PictureQueue> &thumbnails, QObject *parent = nullptr);

    MediaListModel *photos() { return &m_photos; }
    MediaListModel *results() { return &m_results; }
    ContentPage::Page page() const { return m_page; }
    const QString &title() const { return m_scope.title; }
    const QString &scope() const { return m_scope.key; }

Q_SIGNALS:
    void pageChanged();
    void scopeChanged();

private:
    void takeImages();
    void takeResults();
    void takeScope();
    ShownScope selectedScope() const;
    void updatePage();

    QorManage &m_qorManager;
    SearchController &m_search;
    ThumbnailRevisions m_revisions;
    MediaListModel m_photos;
    MediaListModel m_results;
    ShownScope m_scope;
    ContentPage::Page m_page = ContentPage::NothingSelected;
};

} // namespace Qorvane
