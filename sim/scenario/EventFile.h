#pragma once

#include "modem/Scenario.h"
#include "scenario/JsonNode.h"

#include <vector>

namespace arcsim {

/// More in one list are refused.
inline constexpr std::size_t kMostEvents = 200000;
/// Of all events together. In hexadecimal digits twice as much, which is still less than what a daemon keeps for a
/// client that has to read them: none is cut off because of a storm alone.
inline constexpr std::size_t kMostPayloadBytes = 8UL << 20U;
inline constexpr std::size_t kLongestPayload = 32000;  ///< bytes

/// The list `events` of a scenario, storms expanded, in order of time.
std::vector<modem::TimedEvent> readEvents(const JsonNode& list);

/// One object's keys payload, count, everyMs and numbered; others are of no matter. The first event comes at `at`.
std::vector<modem::TimedEvent> readStorm(const JsonNode& node, int id, std::chrono::milliseconds at);

int readEventId(const JsonNode& node);

/// Bytes as pairs of hexadecimal digits.
std::vector<unsigned char> readPayload(const JsonNode& node);

}  // namespace arcsim
