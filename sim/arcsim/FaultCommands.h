#pragma once

#include <CLI/CLI.hpp>

namespace arcsim::program {

class Commands;

/// The commands that make calls of the modem's functions go wrong: fail, delay, hang, clear.
void addFaultCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
