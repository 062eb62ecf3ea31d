#pragma once

#include "arcsim/Commands.h"
#include "support/TextTable.h"

#include <vector>

namespace arcsim::program {

/// The program's exit codes and their meanings, for its help and its manual page.
std::vector<support::TextRow> exitCodeRows();

/// completion, man: made of all commands that are there when they run.
void addTextCommands(CLI::App& app, Commands& commands);

}  // namespace arcsim::program
