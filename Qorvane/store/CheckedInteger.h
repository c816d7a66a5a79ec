#pragma once

#include <cstddef>

namespace Qorvane {

/// The bytes that `count` 32-bit floats take, as SQLite wants a length. A length beyond a signed 32-bit
/// integer ends the program: no row could hold it, and a wrapped number would store a cut vector. Any thread.
int floatByteCount(std::size_t count);

} // namespace Qorvane
