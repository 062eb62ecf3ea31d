#pragma once

#include "kelarcctl/Commands.h"

namespace kelarcctl {

/// Gives the program the command "monitor".
void addMonitor(CLI::App& app, Invocation& invocation);

}  // namespace kelarcctl
