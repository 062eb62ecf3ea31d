#pragma once

#include <chrono>
#include <string>

namespace arcsim::program {

/// Opens a modem with the scenario of a file (empty: the factory's), starts its raw output, and lets so much scenario
/// time pass as fast as it can: sentences go to stdout, a line for every event to stderr. Throws std::runtime_error.
void playScenario(const std::string& scenario, std::chrono::milliseconds duration);

}  // namespace arcsim::program
