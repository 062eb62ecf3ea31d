#pragma once

#include "arcsim/Commands.h"

namespace arcsim::program {

/// The commands replay and convert.
void addRecordingCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
