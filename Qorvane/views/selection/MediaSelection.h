#pragma once

#include "platform/FileUrl.h"
#include "views/grid/GridMovement.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace Qorvane {

/// The one selection of the program: a set of media files, and the rules by which clicks and arrow keys
/// change it. GUI thread.
class MediaSelection : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("There is one selection, and the window owns it.")

public:
    using QObject::QObject;

    const QSet<FileUrl> &urls() const { return m_urls; }
    void setUrls(const QSet<FileUrl> &urls);
    void clear() { setUrls({}); }

    /// A click: selects `url` alone, or with the command key held puts it in or takes it out. Shift means
    /// nothing: there is no range selection.
    void click(const FileUrl &url, bool isCommandHeld);

    /// A double click: `url` alone, also where it was one of several.
    void selectAlone(const FileUrl &url) { setUrls({url}); }

    /// An arrow key over the cells `urls`, in display order: starts from `position`, which is that of the
    /// first selected one (the first cell when none is), and selects the cell arrived at alone. Gives its
    /// position; nothing, and no change, when there are no cells.
    std::optional<int> move(GridDirection direction, int position, const QList<FileUrl> &urls,
                            int columnCount);

Q_SIGNALS:
    /// `before` is what was selected until now.
    void changed(const QSet<Qorvane::FileUrl> &before);

private:
    QSet<FileUrl> m_urls;
};

} // namespace Qorvane
