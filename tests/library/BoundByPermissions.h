#pragma once

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Qorvane {

/// While it lives, file permissions bind the calling thread even if it is root's, so that a refusal can be
/// tested in containers too.
class BoundByPermissions
{
public:
    BoundByPermissions()
    {
        ::syscall(SYS_capget, &m_header, m_before);
        __user_cap_data_struct reduced[2] = {m_before[0], m_before[1]};
        reduced[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
        ::syscall(SYS_capset, &m_header, reduced);
    }
    ~BoundByPermissions() { ::syscall(SYS_capset, &m_header, m_before); }
    BoundByPermissions(const BoundByPermissions &) = delete;
    BoundByPermissions &operator=(const BoundByPermissions &) = delete;

private:
    __user_cap_header_struct m_header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_before[2] = {};
};

} // namespace Qorvane
