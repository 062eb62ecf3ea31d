#pragma once

#include <chrono>

namespace arcsim {

/// Blocks the calling thread for `duration`. Waits on a condition variable: applications and tests may replace the C
/// library's sleep functions to watch their own pauses, and must not see ours.
void pause(std::chrono::milliseconds duration);

}  // namespace arcsim
