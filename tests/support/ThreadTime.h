#pragma once

#include <ctime>

namespace Qorvane {

/// Seconds of processor time that the calling thread has used: what the machine's other work takes isn't in
/// it.
inline double processorSecondsOfThisThread()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

} // namespace Qorvane
