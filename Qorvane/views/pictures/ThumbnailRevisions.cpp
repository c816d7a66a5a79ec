#include "views/pictures/ThumbnailRevisions.h"

#include "media/ImageMessages.h"

namespace Qorvane {

ThumbnailRevisions::ThumbnailRevisions(QObject *parent)
    : QObject(parent)
{
    m_token = NotificationCenter::defaultCenter().addObserver(
        ImageMessages::transformedName, ObserverQueue::main, [this](const Notification &notification) {
            const auto url = notification.userInfo.value(ImageMessages::urlKey).value<FileUrl>();
            if (url.isEmpty())
                return;
            ++m_revisions[url];
            Q_EMIT revisionChanged(url);
        });
}

ThumbnailRevisions::~ThumbnailRevisions()
{
    NotificationCenter::defaultCenter().removeObserver(m_token);
}

} // namespace Qorvane
