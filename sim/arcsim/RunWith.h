#pragma once

#include <asio/io_context.hpp>

#include <string>
#include <vector>

namespace arcsim::program {

/// Runs `command` with ARCSIM_SOCKET naming `socketPath`, and `context` until it has ended. Returns its exit code as a
/// shell would. A SIGTERM is passed on to it; a SIGINT from the terminal reaches it anyway. Throws std::system_error
/// when it cannot be started.
int runWith(asio::io_context& context, const std::string& socketPath, const std::vector<std::string>& command);

}  // namespace arcsim::program
