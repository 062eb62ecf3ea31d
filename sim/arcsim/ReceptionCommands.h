#pragma once

#include <CLI/CLI.hpp>

namespace arcsim::program {

class Commands;

/// The commands that disturb reception: no-fix, jam.
void addReceptionCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
