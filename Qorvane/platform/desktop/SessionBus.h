#pragma once

namespace Qorvane::SessionBus {

/// Whether a session bus is there to talk to. Asked before the first use of the bus, because the bus library
/// would otherwise start a daemon of its own that outlives the program. GUI thread; answers from the
/// environment alone, without waiting.
bool isPresent();

} // namespace Qorvane::SessionBus
