#pragma once

#include "library/Folder.h"

#include <QString>

#include <optional>

namespace Qorvane {

class LibraryState;
class MediaList;

/// What a write of the selected folder, tag or rating brings about, before the write returns. Old and new
/// value are never compared: selecting what is selected already loads the list anew. GUI thread.
class SelectionRules
{
public:
    /// Both outlive it.
    SelectionRules(LibraryState &state, MediaList &mediaList)
        : m_state(state)
        , m_mediaList(mediaList)
    {
    }

    /// A folder, but not none, takes the place of a selected tag and rating. Each of the two that goes loads
    /// the list as well, so there may be three loads; the later supersedes the earlier.
    void selectFolder(const std::optional<Folder> &folder);
    /// Leaves the folder selected: to exclude it is up to the sidebar.
    void selectTag(const std::optional<QString> &tag);
    void selectRating(std::optional<int> rating);

private:
    LibraryState &m_state;
    MediaList &m_mediaList;
};

} // namespace Qorvane
