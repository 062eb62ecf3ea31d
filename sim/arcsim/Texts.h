#pragma once

#include "arcsim/Commands.h"
#include "support/TextTable.h"

#include <vector>

namespace arcsim::program {

/// The program's exit codes and their meanings, for its help and its manual page.
std::vector<support::TextRow> exitCodeRows();

/// The commands completion and man, whose output is built from all commands present when they run.
void addTextCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
