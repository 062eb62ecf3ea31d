#pragma once

#include <cstddef>

namespace arcsim {

/// The functions of the client library, in the order of arc/ArcRilD.h.
enum class Function
{
    SetNotificationMethod,
    Open,
    Close,
    RegisterNotification,
    GetArcVersion,
    GetRilVersion,
    EnableLogging,
    AtcTunneling,
    CheckModuleSetting,
    StartGNSSraw,
    StopGNSS,
    ForceStopGNSS,
    ResetAGNSS,
    CurrentLSTA,
    EnableLSTA,
};

inline constexpr std::size_t kFunctions = 15;

/// Also its index in modem::kRequests.
constexpr std::size_t indexOf(Function function)
{
    return static_cast<std::size_t>(function);
}

}  // namespace arcsim
