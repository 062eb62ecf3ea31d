#pragma once

#include "modem/Scenario.h"
#include "scenario/JsonNode.h"

#include <vector>

namespace arcsim {

/// More in one list are refused.
inline constexpr std::size_t kMostEvents = 200000;
inline constexpr std::size_t kLongestPayload = 32000;  ///< bytes

/// The list `events` of a scenario, storms expanded, in order of time.
std::vector<modem::TimedEvent> readEvents(const JsonNode& list);

/// One object's keys payload, count, everyMs and numbered; others are of no matter. The first event comes at `at`.
std::vector<modem::TimedEvent> readStorm(const JsonNode& node, int id, std::chrono::milliseconds at);

int readEventId(const JsonNode& node);

/// Bytes as pairs of hexadecimal digits.
std::vector<unsigned char> readPayload(const JsonNode& node);

}  // namespace arcsim
