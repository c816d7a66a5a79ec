#pragma once

#include "views/sidebar/SidebarRow.h"

/// What the sidebar writes and says. GUI thread.
namespace Qorvane::SidebarTexts {

/// The row's count in the user's own digits; empty while it isn't known.
QString countText(const SidebarRow &row);
/// The share done in whole percent, cut off: "0%", "99%".
QString percentText(double progress);
/// The row's name for screen readers: "3 stars, 14 items".
QString spokenName(const SidebarRow &row);

} // namespace Qorvane::SidebarTexts
