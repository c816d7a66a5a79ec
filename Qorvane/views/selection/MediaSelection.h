#pragma once

#include "platform/FileUrl.h"

#include <QObject>
#include <QSet>

namespace Qorvane {

/// The one selection of the program: a set of media files, and the rules by which clicks and arrow keys
/// change it. GUI thread.
class MediaSelection : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    const QSet<FileUrl> &urls() const { return m_urls; }
    void setUrls(const QSet<FileUrl> &urls);
    void clear() { setUrls({}); }

    /// A click: selects `url` alone, or with the command key held puts it in or takes it out. Shift means
    /// nothing: there is no range selection.
    void click(const FileUrl &url, bool isCommandHeld);

    /// A double click, or an arrow key that came to `url`: it alone, also where it was one of several.
    void selectAlone(const FileUrl &url) { setUrls({url}); }

Q_SIGNALS:
    /// `before` is what was selected until now.
    void changed(const QSet<Qorvane::FileUrl> &before);

private:
    QSet<FileUrl> m_urls;
};

} // namespace Qorvane
