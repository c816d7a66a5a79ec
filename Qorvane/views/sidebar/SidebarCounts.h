#pragma once

#include "views/sidebar/SidebarSections.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

namespace Qorvane {

/// How many files each tag and each number of stars has, read in the background: the store answers in its
/// turn only, behind a scan of all vectors if need be. GUI thread.
class SidebarCounts : public QObject
{
    Q_OBJECT

public:
    /// Reads them all; called on a background thread, where it may block.
    using Source = std::function<TagAndRatingCounts()>;

    explicit SidebarCounts(Source source, QObject *parent = nullptr);

    /// The store's own.
    static TagAndRatingCounts readStore();

    /// Something changed. Costs nothing: many calls make one read, and reads keep a distance that leaves the
    /// store to others for most of the time.
    void refresh();

Q_SIGNALS:
    void changed(const Qorvane::TagAndRatingCounts &counts);

private:
    void read();
    void take(const TagAndRatingCounts &counts, std::chrono::nanoseconds duration);

    const std::shared_ptr<const Source> m_source; // a read that starts when this has ended finds it gone
    QTimer m_wait;
    QDeadlineTimer m_rest;
    bool m_isReading = false;
    bool m_isStale = false;
    std::optional<TagAndRatingCounts> m_last;
};

} // namespace Qorvane
