#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace arcsim::modem {

/// One kind of request that reaches the modem: its name in scenarios and the time a real unit takes to answer.
struct RequestKind
{
    std::string_view name;
    int shortestMs;
    int longestMs;
};

/// In the order of the client library's functions. A request is identified by its index.
inline constexpr std::array<RequestKind, 15> kRequests{{
    {"ARC_SetNotificationMethod", 1, 3},
    {"ARC_Open", 280, 340},
    {"ARC_Close", 60, 100},
    {"ARC_RegisterNotification", 1, 3},
    {"ARC_GetArcVersion", 0, 0},
    {"ARC_GetRilVersion", 8, 20},
    {"ARC_EnableLogging", 5, 15},
    {"ARC_AtcTunneling", 20, 80},
    {"ARC_CheckModuleSetting", 5, 30},
    {"ARC_StartGNSSraw", 130, 190},
    {"ARC_StopGNSS", 90, 150},
    {"ARC_ForceStopGNSS", 40, 80},
    {"ARC_ResetAGNSS", 60, 120},
    {"ARC_CurrentLSTA", 5, 15},
    {"ARC_EnableLSTA", 8, 20},
}};

std::optional<std::size_t> findRequest(std::string_view name);

/// How long the `number`-th call of a request takes on a real unit; the same for the same seed.
std::chrono::milliseconds realisticLatency(std::uint64_t seed, std::size_t request, unsigned number);

}  // namespace arcsim::modem
