#pragma once

#include "modem/Faults.h"
#include "modem/Lsta.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace arcsim::modem {

/// A stretch of scenario time.
struct Outage
{
    std::chrono::milliseconds from{};   ///< included
    std::chrono::milliseconds until{};  ///< excluded
};

/// An event that the modem sends unasked.
struct TimedEvent
{
    std::chrono::milliseconds at{};
    int id = 0;
    std::vector<unsigned char> payload{};
};

/// Everything that distinguishes one simulated run from another. Times count from the application's first request.
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
    std::vector<Outage> outages{};          ///< the RIL daemon is dead: every call answers 31, events are lost
};

}  // namespace arcsim::modem
