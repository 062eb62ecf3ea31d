#pragma once

#include "modem/Scenario.h"
#include "scenario/JsonNode.h"

#include <vector>

namespace arcsim {

/// The most events in one list.
inline constexpr std::size_t kMostEvents = 200000;
/// The most payload bytes of all events together. As hexadecimal digits they take twice as much, still less than a
/// daemon keeps for a slow client: no client is cut off because of a storm alone.
inline constexpr std::size_t kMostPayloadBytes = 8UL << 20U;
inline constexpr std::size_t kLongestPayload = 32000;  ///< bytes

/// The list `events` of a scenario, storms expanded, in order of time.
std::vector<modem::TimedEvent> readEvents(const JsonNode& list);

/// Reads an object's keys payload, count, everyMs and numbered; ignores others. The first event comes at `at`.
std::vector<modem::TimedEvent> readStorm(const JsonNode& node, int id, std::chrono::milliseconds at);

int readEventId(const JsonNode& node);

/// Bytes as pairs of hexadecimal digits.
std::vector<unsigned char> readPayload(const JsonNode& node);

}  // namespace arcsim
