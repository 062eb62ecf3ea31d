#pragma once

#include "arc/ArcRilD.h"

#include <string>
#include <vector>

namespace daemon_test {

/// What follows the command in a line.
using Words = std::vector<std::string>;

/// Writes one line as a whole; from any thread.
void say(const std::string& line);

}  // namespace daemon_test
