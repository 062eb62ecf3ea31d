#pragma once

#include "arcsim/EndSignals.h"

#include <asio/io_context.hpp>

#include <string>
#include <vector>

namespace arcsim::program {

/// Runs `command` with ARCSIM_SOCKET set to `socketPath`, and runs `context` until the command has ended. Returns the
/// command's exit code as a shell would. Signals that would end this program are passed on to the command, except
/// SIGINT and SIGQUIT: a terminal sends these to the command anyway, and the command decides what they mean. Throws
/// std::system_error when the command cannot be started.
int runWith(asio::io_context& context, EndSignals& signals, const std::string& socketPath,
            const std::vector<std::string>& command);

}  // namespace arcsim::program
