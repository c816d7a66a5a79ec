#pragma once

#include "views/sidebar/SidebarRow.h"

#include <QList>

#include <optional>

/// Where the keys lead in the sidebar. Any thread.
namespace Qorvane::SidebarMovement {

enum class Key { up, down, home, end, left, right };

struct Step
{
    int row = -1;
    /// The row's sub-folders unfold or fold, instead of the row being chosen.
    bool isToggle = false;

    friend bool operator==(const Step &, const Step &) = default;
};

/// From row `current`, -1 for none. Rows that can't be selected are passed over; without another row to go
/// to, nothing.
std::optional<Step> move(const QList<SidebarRow> &rows, int current, Key key);

/// The next row after `current`, or from the top again, whose name begins with `text`, without regard to
/// case. `current` itself counts as the first when `text` has more than one character: the user goes on
/// typing.
std::optional<int> find(const QList<SidebarRow> &rows, int current, const QString &text);

} // namespace Qorvane::SidebarMovement
