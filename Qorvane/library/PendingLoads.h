#pragma once

#include "library/SortCriterion.h"
#include "platform/FileUrl.h"

#include <QList>

#include <deque>
#include <functional>
#include <optional>

namespace Qorvane {

/// The list loads that were begun and whose lists weren't shown yet. They end in any order; their lists are
/// handed out in the order they were begun, so that the later one has the last word. A load that the
/// selection no longer asks for keeps none waiting. GUI thread.
class PendingLoads
{
public:
    using Number = quint64;

    struct List
    {
        QList<FileUrl> urls;
        /// What they are sorted by.
        SortSettings settings;
    };

    struct Load
    {
        /// Whether the selection that it was begun for still stands.
        std::function<bool()> isWanted;
        std::function<void(const QList<FileUrl> &urls)> show;
        Number number = 0;
        std::optional<List> list;
    };

    Number begin(std::function<bool()> isWanted, std::function<void(const QList<FileUrl> &urls)> show);
    /// What the load found.
    void finish(Number number, List list);

    /// Takes out the oldest load that is wanted, if it has ended; otherwise nothing, since it isn't the turn
    /// of any other. Drops those that have ended and are no longer wanted.
    std::optional<Load> takeNext();
    /// Puts `load` back in front of all others, to be finished once more.
    void reopen(Load load);
    bool isAnyWanted() const;

private:
    std::deque<Load> m_loads;
    Number m_lastNumber = 0;
};

} // namespace Qorvane
