#pragma once

#include "arcsim/Commands.h"

namespace arcsim::program {

/// replay, convert.
void addRecordingCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
