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

    /// 0 for a file that wasn't changed.
    int revisionOf(const FileUrl &url) const { return m_revisions.value(url); }

Q_SIGNALS:
    void revisionChanged(const Qorvane::FileUrl &url);

private:
    NotificationCenter::Token m_token;
    QHash<FileUrl, int> m_revisions;
};

} // namespace Qorvane
