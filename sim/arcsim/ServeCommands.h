#pragma once

#include "arcsim/Commands.h"

namespace arcsim::program {

/// serve, run, check.
void addServeCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
