#pragma once

#include <CLI/CLI.hpp>

namespace arcsim::program {

class Commands;

/// What goes wrong with calls of the modem's functions: fail, delay, hang, clear.
void addFaultCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
