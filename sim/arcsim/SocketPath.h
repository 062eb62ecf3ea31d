#pragma once

#include <string>

namespace arcsim::program {

struct SocketPath
{
    std::string path{};
    bool isChosen = false;  ///< by the user; else it is the default one, where only a daemon of his own is believed
};

/// Where the daemon listens: `given`, or else ARCSIM_SOCKET, or else arcsim.sock in XDG_RUNTIME_DIR, or else
/// /tmp/arcsim-UID.sock. A variable that is empty counts as not set. Throws UsageError, which names the path and where
/// it comes from, for one that is too long for a socket.
SocketPath socketPath(const std::string& given);

}  // namespace arcsim::program
