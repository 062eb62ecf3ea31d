#pragma once

#include <CLI/CLI.hpp>

namespace arcsim::program {

class Commands;

/// Everything that a running daemon can be told: status, reset, stop, advance, and the families that this includes.
void addControlCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
