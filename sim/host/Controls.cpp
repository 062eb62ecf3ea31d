#include "host/Controls.h"

#include "modem/Requests.h"
#include "scenario/EventFile.h"
#include "scenario/FaultFile.h"
#include "scenario/SystemNames.h"
#include "support/Words.h"

#include <algorithm>
#include <limits>

namespace arcsim {

namespace {

using Json = nlohmann::ordered_json;
using std::chrono::milliseconds;

std::optional<milliseconds> durationOf(const JsonNode& message)
{
    const auto node = message.find("forMs");
    return node ? std::optional(node->time()) : std::nullopt;
}

bool isOff(const JsonNode& message)
{
    const auto node = message.find("off");
    return node && node->flag();
}

Json status(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({});
    return statusOf(host);
}

/// Long enough for every buffer that a client has, short enough for a line that holds several.
std::string settingText(const JsonNode& node, const std::string& accepted)
{
    constexpr std::size_t kLongest = 2048;
    std::string text = node.text(accepted);
    if (text.size() > kLongest)
        node.refuse(accepted + " of at most " + std::to_string(kLongest) + " bytes");
    return text;
}

Json set(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({"key", "value", "force", "quoted"});
    const std::vector<std::string> keys = modem::Settings::keys();
    const std::string key = settingText(message.at("key", support::joined(keys)), support::joined(keys));
    const auto force = message.find("force");
    const bool isForced = force && force->flag();
    if (const auto quoted = message.find("quoted")) {  // for tests: any text under any key
        host.forceSetting(key, settingText(*quoted, "a text"));
        return {{"key", key}};
    }
    const modem::Settings& settings = host.modem().settings();
    if (!isForced)
        message.at("key", "").word(keys);
    const JsonNode value = message.at("value", "a value without quotes");
    const std::string plain = settingText(value, "a value without quotes");
    using Write = modem::Settings::Write;
    const Write outcome = isForced ? Write::same : modem::Settings().write(key, modem::Settings::quote(plain));
    if (outcome != Write::changed && outcome != Write::same)
        value.refuse(modem::Settings::accepted(key));
    const std::string before = settings.plain(key);
    host.forceSetting(key, modem::Settings::quote(plain));
    return {{"key", key}, {"value", plain}, {"before", before}};
}

Json quotedSettings(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({});
    Json settings = Json::object();
    for (const auto& [key, quoted] : host.modem().settings().all())
        settings[key] = quoted;
    return settings;
}

Json latencies(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({"on"});
    host.setRealisticLatency(message.at("on", "true or false").flag());
    return Json::object();
}

/// More pending events would only make the modem slow.
void requireRoom(const ModemHost& host, const std::vector<modem::TimedEvent>& more)
{
    std::size_t count = more.size();
    std::size_t bytes = 0;
    for (const auto& event : more)
        bytes += event.payload.size();
    for (const auto& event : host.injectedEvents()) {
        ++count;
        bytes += event.payload.size();
    }
    if (count > kMostEvents || bytes > kMostPayloadBytes)
        throw ScenarioError("event: with those to come already there would be " + std::to_string(count) + " with " +
                            std::to_string(bytes) + " bytes of payload; accepted: at most " +
                            std::to_string(kMostEvents) + " with " + std::to_string(kMostPayloadBytes) + " bytes");
}

Json event(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({"eventId", "payload", "count", "everyMs", "numbered"});
    const int id = readEventId(message.at("eventId", "an event id"));
    std::vector<modem::TimedEvent> events = readStorm(message, id, milliseconds(0));
    requireRoom(host, events);
    const std::size_t count = events.size();
    const unsigned listeners = host.injectEvents(std::move(events));
    return {{"sent", count}, {"listeners", listeners}};
}

Json lsta(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({"system", "status", "value", "auto"});
    const modem::LstaSystem system = readLstaSystem(message.at("system", support::joined(lstaSystemNames())));
    const auto automatic = message.find("auto");
    if (automatic && automatic->flag()) {
        host.overrideLsta(system, std::nullopt);
        return Json::object();
    }
    constexpr long long kHighest = std::numeric_limits<int>::max();
    modem::LstaLevel level;
    level.status = static_cast<int>(message.at("status", "a status").integer(-kHighest, kHighest));
    if (const auto value = message.find("value"))
        level.value = value->number(-1e9, 1e9);
    host.overrideLsta(system, level);
    return Json::object();
}

Json fault(ModemHost& host, const JsonNode& message)
{
    const modem::Fault fault = readFault(message, true);
    constexpr std::size_t kMost = 200;  // this many still fit into the status
    if (host.injectedFaults().size() >= kMost)
        throw ScenarioError("fault: " + std::to_string(kMost) + " are injected already; accepted: that many at a " +
                            "time; clear drops them");
    host.injectFault(fault);
    return Json::object();
}

Json noFix(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({"forMs", "off"});
    host.setNoFix(!isOff(message), durationOf(message));
    return Json::object();
}

Json jam(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({"systems", "forMs", "off"});
    const auto systems = readSystems(message.at("systems", "\"all\" or a list of " + support::joined(systemNames())));
    host.setJammed(systems, !isOff(message), durationOf(message));
    return Json::object();
}

Json outage(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({"forMs"});
    host.injectOutage(message.at("forMs", "a time in milliseconds").time());
    return Json::object();
}

Json advance(ModemHost& host, const JsonNode& message)
{
    message.requireKeys({"ms"});
    const milliseconds time = message.at("ms", "a time in milliseconds").time();
    if (!host.isVirtual())
        throw ScenarioError("advance: real time goes on by itself; accepted: only with virtual time "
                            "(ARCSIM_TIME=virtual)");
    host.advanceTo(host.now() + time);
    return {{"scenarioMs", host.now().count()}};
}

struct Row
{
    const char* name;
    Json (*act)(ModemHost& host, const JsonNode& message);
};
constexpr Row kRows[] = {
    {"status", status},       {"set", set},         {"quoted-settings", quotedSettings},
    {"latencies", latencies}, {"event", event},     {"lsta", lsta},
    {"fault", fault},         {"no-fix", noFix},    {"jam", jam},
    {"outage", outage},       {"advance", advance},
};

}  // namespace

bool isControl(const std::string& name)
{
    return std::any_of(std::begin(kRows), std::end(kRows), [&](const Row& row) { return name == row.name; });
}

std::vector<std::string> controlNames()
{
    std::vector<std::string> names;
    for (const Row& row : kRows)
        names.emplace_back(row.name);
    for (const char* const own : {"clear", "reset", "stop"})
        names.emplace_back(own);
    return names;
}

Json control(ModemHost& host, const std::string& name, const nlohmann::json& message)
{
    for (const Row& row : kRows)
        if (name == row.name)
            return row.act(host, JsonNode(name, message));
    throw ScenarioError("control: unknown; accepted: " + support::joined(controlNames()) +
                        support::suggestion(name, controlNames()));
}

}  // namespace arcsim
