#pragma once

#include <cstdio>
#include <cstdlib>

namespace Qorvane {

/// Ends the benchmark, saying `what`, where there is nothing to be measured.
inline void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

} // namespace Qorvane
