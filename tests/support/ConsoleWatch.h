#pragma once

namespace Qorvane {

/// Every line that Qt or QML writes to the console while it lives is a mistake of ours: its end fails the
/// test that one was written in. The first member of a fixture, so that it sees the others go too. One at a
/// time.
class ConsoleWatch
{
public:
    ConsoleWatch();
    ~ConsoleWatch();
    ConsoleWatch(const ConsoleWatch &) = delete;
    ConsoleWatch &operator=(const ConsoleWatch &) = delete;
};

} // namespace Qorvane
