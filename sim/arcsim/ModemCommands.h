#pragma once

#include <CLI/CLI.hpp>

namespace arcsim::program {

class Commands;

/// The commands that change the modem, apart from faults: set, event, lsta, outage.
void addModemCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
