#pragma once

#include "platform/Log.h"

namespace Qorvane::Encoders {

/// Keeps the library's log lines, which would go to standard output, out of the commands' results while this
/// lives.
class QuietLog
{
public:
    QuietLog()
    {
        Log::setSink([](const QString &) {});
    }
    ~QuietLog() { Log::setSink({}); }
    QuietLog(const QuietLog &) = delete;
    QuietLog &operator=(const QuietLog &) = delete;
};

} // namespace Qorvane::Encoders
