#pragma once

#include "arcsim/LineServer.h"
#include "arcsim/ModemService.h"

#include <functional>
#include <string>

namespace arcsim::program {

/// The command-line options of the commands that serve a socket.
struct ServeOptions
{
    std::string scenario{};   ///< file; empty: ARCSIM_SCENARIO, or the default scenario
    std::string recording{};  ///< file of NMEA sentences; empty: ARCSIM_REPLAY, or none
    std::string time{};       ///< empty: ARCSIM_TIME
    bool fresh = false;       ///< discard the state that a killed process left
    bool keepsMemory = true;
    bool tellsCalls = false;
};

/// The modem service's options for `socketPath`. Throws ScenarioError for a scenario or time that is not accepted.
ModemService::Options serviceOptions(const ServeOptions& options, const std::string& socketPath);

/// Serves until a signal that would end the program or the control "stop" comes. `started` is called once the socket
/// exists. Throws std::runtime_error when serving is impossible.
void serve(const ServeOptions& options, const std::string& socketPath,
           const std::function<void(const ModemService&)>& started);

}  // namespace arcsim::program
