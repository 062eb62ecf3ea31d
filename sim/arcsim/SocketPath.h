#pragma once

#include <string>

namespace arcsim::program {

struct SocketPath
{
    std::string path{};
    bool isChosen = false;  ///< by the user; otherwise the default path, where only the user's own daemon is trusted
};

/// Where the daemon listens: `given`, or else ARCSIM_SOCKET, or else arcsim.sock in XDG_RUNTIME_DIR, or else
/// /tmp/arcsim-UID.sock. A variable that is empty counts as not set. Throws UsageError, which names the path and its
/// source, for a path that is too long for a socket.
SocketPath socketPath(const std::string& given);

}  // namespace arcsim::program
