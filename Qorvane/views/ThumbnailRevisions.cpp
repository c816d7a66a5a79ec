#include "views/ThumbnailRevisions.h"

namespace Qorvane {

namespace {

const QString imageTransformedName = QStringLiteral("ImageTransformed");
const QString urlKey = QStringLiteral("url");

} // namespace

ThumbnailRevisions::ThumbnailRevisions(QObject *parent)
    : QObject(parent)
{
    m_token = NotificationCenter::defaultCenter().addObserver(
        imageTransformedName, ObserverQueue::main, [this](const Notification &notification) {
            const auto url = notification.userInfo.value(urlKey).value<FileUrl>();
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
