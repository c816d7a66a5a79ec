#pragma once

#include "library/Folder.h"

#include <QString>

#include <optional>

namespace Qorvane {

/// What the library shows: a tag before a rating before a folder, where more than one is selected. A value.
struct ShownScope
{
    enum class Kind { nothing, tag, rating, folder };

    Kind kind = Kind::nothing;
    QString title; ///< as the window says it; empty for nothing
    QString key;   ///< another text for each tag, rating and folder; empty for nothing

    static ShownScope of(const std::optional<QString> &selectedTag, std::optional<int> selectedRating,
                         const std::optional<Folder> &selectedFolder);

    bool operator==(const ShownScope &) const = default;
};

} // namespace Qorvane
