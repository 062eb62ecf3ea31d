#pragma once

#include "arcsim/EndSignals.h"

#include <asio/io_context.hpp>

#include <string>
#include <vector>

namespace arcsim::program {

/// Runs `command` with ARCSIM_SOCKET naming `socketPath`, and `context` until it has ended. Returns its exit code as a
/// shell would. Signals that would end this program are passed on to it, apart from SIGINT and SIGQUIT: those from a
/// terminal reach it anyway, and it decides what they mean. Throws std::system_error when it cannot be started.
int runWith(asio::io_context& context, EndSignals& signals, const std::string& socketPath,
            const std::vector<std::string>& command);

}  // namespace arcsim::program
