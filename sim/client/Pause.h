#pragma once

#include <chrono>

namespace arcsim {

/// Keeps the calling thread for `duration`. Waits on a condition variable: applications and tests may replace the
/// sleep functions of the C library to watch their own pauses, and must not see ours.
void pause(std::chrono::milliseconds duration);

}  // namespace arcsim
