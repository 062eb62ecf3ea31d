#pragma once

#include <CLI/CLI.hpp>

namespace arcsim::program {

class Commands;

/// All commands that control a running daemon: status, reset, stop, advance, and the families of faults, modem and
/// reception.
void addControlCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
