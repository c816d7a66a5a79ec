#pragma once

namespace Qorvane::ProcessMemory {

/// What of this process is in memory now, in kibibytes.
double resident();

} // namespace Qorvane::ProcessMemory
