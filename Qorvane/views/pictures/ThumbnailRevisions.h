#pragma once

#include "platform/FileUrl.h"
#include "platform/NotificationCenter.h"

#include <QHash>
#include <QObject>

namespace Qorvane {

/// Counts how often each file's picture was changed while the window lives, as "ImageTransformed" tells: a
/// cell that shows an earlier count has to load its thumbnail again. GUI thread.
class ThumbnailRevisions : public QObject
{
    Q_OBJECT

public:
    explicit ThumbnailRevisions(QObject *parent = nullptr);
    ~ThumbnailRevisions() override;

    /// The same for all files that weren't changed, and no number that an earlier object gave: the toolkit
    /// keeps pictures when a window goes.
    int revisionOf(const FileUrl &url) const { return m_revisions.value(url, m_first); }

Q_SIGNALS:
    void revisionChanged(const Qorvane::FileUrl &url);

private:
    NotificationCenter::Token m_token;
    int m_first;
    QHash<FileUrl, int> m_revisions;
};

} // namespace Qorvane
