#pragma once

#include <QString>

namespace Qorvane {

/// The starter pair, where ./test or ./run has built it; empty without one. Tests that need it say so and are
/// skipped without: a machine without a network has none.
QString starterFolder();

/// Why a test is skipped.
inline constexpr char noStarter[] = "the starter encoders aren't built (build/starter); ./test builds them";

/// Shows the pair to the program as the user's own encoders; false when there is none.
bool installStarter();

} // namespace Qorvane
