#include "views/pictures/ThumbnailRevisions.h"

#include "media/ImageMessages.h"

#include <algorithm>

namespace Qorvane {

namespace {

int lastGiven = -1;

} // namespace

ThumbnailRevisions::ThumbnailRevisions(QObject *parent)
    : QObject(parent)
    , m_first(++lastGiven)
{
    m_token = NotificationCenter::defaultCenter().addObserver(
        ImageMessages::transformedName, ObserverQueue::main, [this](const Notification &notification) {
            const auto url = notification.userInfo.value(ImageMessages::urlKey).value<FileUrl>();
            if (url.isEmpty())
                return;
            const int revision = revisionOf(url) + 1;
            m_revisions.insert(url, revision);
            lastGiven = std::max(lastGiven, revision);
            Q_EMIT revisionChanged(url);
        });
}

ThumbnailRevisions::~ThumbnailRevisions()
{
    NotificationCenter::defaultCenter().removeObserver(m_token);
}

} // namespace Qorvane
