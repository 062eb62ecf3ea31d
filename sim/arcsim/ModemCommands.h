#pragma once

#include <CLI/CLI.hpp>

namespace arcsim::program {

class Commands;

/// What the modem can be told, apart from faults: set, event, lsta, outage.
void addModemCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
