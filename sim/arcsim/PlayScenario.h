#pragma once

#include <chrono>
#include <string>

namespace arcsim::program {

/// Opens a modem with the scenario of a file (empty: the default scenario), starts its raw output, and lets the given
/// scenario time pass as fast as possible. Sentences go to stdout, one line per event goes to stderr. Throws
/// std::runtime_error.
void playScenario(const std::string& scenario, std::chrono::milliseconds duration);

}  // namespace arcsim::program
