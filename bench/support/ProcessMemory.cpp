#include "support/ProcessMemory.h"

#include <unistd.h>

#include <cstdio>

namespace Qorvane::ProcessMemory {

double resident()
{
    std::FILE *const file = std::fopen("/proc/self/statm", "r");
    if (!file)
        return 0;
    long size = 0;
    long pages = 0;
    const bool isRead = std::fscanf(file, "%ld %ld", &size, &pages) == 2;
    std::fclose(file);
    return isRead ? double(pages) * double(::sysconf(_SC_PAGESIZE)) / 1024 : 0;
}

} // namespace Qorvane::ProcessMemory
