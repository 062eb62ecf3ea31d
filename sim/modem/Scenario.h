#pragma once

#include "modem/Lsta.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace arcsim::modem {

/// What goes wrong with some calls of one request. Every condition that is set has to hold.
struct Fault
{
    std::size_t request = 0;                             ///< index in kRequests
    std::optional<unsigned> firstCall{};                 ///< counted from 1
    unsigned callCount = 1;                              ///< how many calls from `firstCall` on
    std::optional<std::chrono::milliseconds> from{};     ///< scenario time, included
    std::optional<std::chrono::milliseconds> until{};    ///< scenario time, excluded
    std::optional<int> code{};                           ///< the modem is not asked; empty: it answers, only later
    std::optional<std::chrono::milliseconds> latency{};  ///< instead of the usual one
};

/// An event that the modem sends of its own accord.
struct TimedEvent
{
    std::chrono::milliseconds at{};
    int id = 0;
    std::vector<unsigned char> payload{};
};

/// All that makes one simulated run different from another. Times count from the first request of the application.
struct Scenario
{
    std::uint64_t seed = 1;
    bool realisticLatency = true;
    std::map<std::string, std::string> settings{};  ///< plain values that replace the factory's
    std::chrono::milliseconds coldFirstFix{30000};
    std::chrono::milliseconds hotFirstFix{2000};
    std::chrono::milliseconds engineStart{600};  ///< how long the engine stays in its starting state
    std::vector<Fault> faults{};
    std::vector<TimedEvent> events{};       ///< in order of time
    std::vector<LstaChange> lstaChanges{};  ///< in order of time
};

/// The first fault that applies to the `number`-th call of `request` at `now`; null when there is none.
const Fault* findFault(const Scenario& scenario, std::size_t request, unsigned number, std::chrono::milliseconds now);

}  // namespace arcsim::modem
