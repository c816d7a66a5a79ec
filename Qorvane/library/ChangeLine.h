#pragma once

#include <deque>
#include <functional>
#include <utility>

namespace Qorvane {

/// Changes of one list that take effect in the order they were asked for, also when one of them has to wait
/// for the disk. One thread.
class ChangeLine
{
public:
    using Change = std::function<void()>;

    /// Makes `change` now, or after the change that holds the line and what waits behind it.
    void perform(Change change)
    {
        if (m_isHeld)
            m_waiting.push_back(std::move(change));
        else
            change();
    }

    /// What is asked for from now on waits for `release`.
    void hold() { m_isHeld = true; }

    bool isHeld() const { return m_isHeld; }

    void release()
    {
        m_isHeld = false;
        while (!m_waiting.empty() && !m_isHeld) {
            const Change change = std::move(m_waiting.front());
            m_waiting.pop_front();
            change();
        }
    }

private:
    std::deque<Change> m_waiting;
    bool m_isHeld = false;
};

} // namespace Qorvane
