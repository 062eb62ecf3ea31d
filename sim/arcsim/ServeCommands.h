#pragma once

#include "arcsim/Commands.h"

namespace arcsim::program {

/// The commands serve, run and check.
void addServeCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
