#include "scenario/EventFile.h"

#include "modem/Hex.h"

#include "support/Words.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace arcsim {

namespace {

using modem::TimedEvent;

constexpr long long kMostInStorm = 100000;

[[noreturn]] void refusePayloads(const JsonNode& node)
{
    node.refuse("events with at most " + std::to_string(kMostPayloadBytes) + " bytes of payload altogether");
}

/// An event's number as its payload: 32 bits, lowest byte first.
std::vector<unsigned char> numberAsPayload(std::size_t number)
{
    std::vector<unsigned char> bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<unsigned char>((number >> shift) & 0xFFU));
    return bytes;
}

}  // namespace

std::vector<unsigned char> readPayload(const JsonNode& node)
{
    const std::string accepted = "pairs of hexadecimal digits, at most " + std::to_string(kLongestPayload);
    const std::string digits = node.text(accepted);
    const auto bytes = bytesOfHex(digits);
    if (!bytes || bytes->size() > kLongestPayload)
        node.refuse(accepted);
    return *bytes;
}

int readEventId(const JsonNode& node)
{
    return static_cast<int>(node.integer(0, std::numeric_limits<int>::max()));
}

std::vector<TimedEvent> readStorm(const JsonNode& node, int id, std::chrono::milliseconds at)
{
    const auto payload = node.find("payload");
    const auto count = node.find("count");
    const auto every = node.find("everyMs");
    const auto numbered = node.find("numbered");
    const bool isNumbered = numbered && numbered->flag();
    if (isNumbered && payload)
        node.refuse("an object with either payload or numbered");
    const std::vector<unsigned char> bytes = payload ? readPayload(*payload) : std::vector<unsigned char>{};
    const auto events = static_cast<std::size_t>(count ? count->integer(1, kMostInStorm) : 1);
    const std::chrono::milliseconds period = every ? every->time() : std::chrono::milliseconds(0);
    if (events * bytes.size() > kMostPayloadBytes)
        refusePayloads(node);
    std::vector<TimedEvent> storm;
    storm.reserve(events);
    for (std::size_t i = 0; i < events; ++i)
        storm.push_back({at + static_cast<int>(i) * period, id, isNumbered ? numberAsPayload(i) : bytes});
    return storm;
}

std::vector<TimedEvent> readEvents(const JsonNode& list)
{
    std::vector<TimedEvent> events;
    std::size_t bytes = 0;
    for (const JsonNode& each : list.elements(kMostEvents)) {
        each.requireKeys({"atMs", "id", "payload", "count", "everyMs", "numbered"});
        const auto at = each.at("atMs", "a time in milliseconds").time();
        const int id = readEventId(each.at("id", "an event id"));
        std::vector<TimedEvent> storm = readStorm(each, id, at);
        if (events.size() + storm.size() > kMostEvents)
            each.refuse("at most " + std::to_string(kMostEvents) + " events altogether (with this one " +
                        std::to_string(events.size() + storm.size()) + ")");
        bytes += storm.size() * storm.front().payload.size();
        if (bytes > kMostPayloadBytes)
            refusePayloads(each);
        events.insert(events.end(), std::make_move_iterator(storm.begin()), std::make_move_iterator(storm.end()));
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const TimedEvent& a, const TimedEvent& b) { return a.at < b.at; });
    return events;
}

}  // namespace arcsim
