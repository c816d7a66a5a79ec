#pragma once

#include "platform/LeavablePool.h"

#include <atomic>
#include <functional>
#include <latch>
#include <memory>

namespace Qorvane {

/// A drive that doesn't answer before it comes back, which it does at the latest when this goes.
class DeadDrive
{
public:
    DeadDrive() = default;
    ~DeadDrive() { comeBack(); }
    DeadDrive(const DeadDrive &) = delete;
    DeadDrive &operator=(const DeadDrive &) = delete;

    /// What reads from it, on whatever thread: it is over when the drive has answered. May outlive this.
    std::function<void()> reading() const
    {
        return [files = m_files] {
            ++files->reads;
            files->answer.wait();
            ++files->answers;
        };
    }

    int reads() const { return m_files->reads; }
    int answers() const { return m_files->answers; }

    /// Answers all, and waits until those in leavable pools are through with what they read.
    void comeBack()
    {
        if (!m_files->answer.try_wait())
            m_files->answer.count_down();
        LeavablePool::waitUntilIdle();
    }

private:
    struct Files
    {
        std::atomic_int reads = 0;
        std::atomic_int answers = 0;
        std::latch answer{1};
    };
    const std::shared_ptr<Files> m_files = std::make_shared<Files>();
};

} // namespace Qorvane
