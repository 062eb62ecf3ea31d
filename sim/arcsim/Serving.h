#pragma once

#include "arcsim/LineServer.h"
#include "arcsim/ModemService.h"

#include <functional>
#include <string>

namespace arcsim::program {

/// What serves a socket, as options of a command line say it.
struct ServeOptions
{
    std::string scenario{};   ///< file; empty: ARCSIM_SCENARIO, or the factory's
    std::string recording{};  ///< of NMEA sentences; empty: ARCSIM_REPLAY, or none
    std::string time{};       ///< empty: ARCSIM_TIME
    bool fresh = false;       ///< what a killed process has left is not taken up
    bool keepsMemory = true;
    bool tellsCalls = false;
};

/// The options of the modem service at `socketPath`. Throws ScenarioError for a scenario or time that is not accepted.
ModemService::Options serviceOptions(const ServeOptions& options, const std::string& socketPath);

/// Serves until a signal that ends programs, or the control "stop". `started` is called once the socket is there.
/// Throws std::runtime_error when it cannot be served.
void serve(const ServeOptions& options, const std::string& socketPath,
           const std::function<void(const ModemService&)>& started);

}  // namespace arcsim::program
