#pragma once

#include <CLI/CLI.hpp>

namespace arcsim::program {

class Commands;

/// What keeps satellites from being heard: no-fix, jam.
void addReceptionCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
