#include "scenario/ScenarioFile.h"

#include "modem/Requests.h"
#include "modem/ResultCode.h"
#include "modem/Settings.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

namespace arcsim {

namespace {

using modem::Fault;
using modem::LstaChange;
using modem::LstaSystem;
using modem::TimedEvent;

constexpr long long kHighestInt = std::numeric_limits<int>::max();

std::string requestNames()
{
    std::string names;
    for (const modem::RequestKind& kind : modem::kRequests)
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    return names;
}

std::size_t readRequest(const JsonNode& node)
{
    const auto request = modem::findRequest(node.text(requestNames()));
    if (!request)
        node.refuse(requestNames());
    return *request;
}

int readFaultCode(const JsonNode& node)
{
    const auto code = static_cast<int>(node.integer(-kHighestInt, kHighestInt));
    if (code == modem::kSuccess)
        node.refuse("a result code other than 0 (leave it out for a call that only takes longer)");
    return code;
}

Fault readFault(const JsonNode& node)
{
    node.requireKeys({"function", "call", "count", "fromMs", "untilMs", "code", "latencyMs"});
    Fault fault;
    fault.request = readRequest(node.at("function", requestNames()));
    if (node.has("call") || node.has("count"))
        fault.firstCall = 1;
    if (node.has("call"))
        fault.firstCall = static_cast<unsigned>(node.at("call", "").integer(1, kHighestInt));
    if (node.has("count"))
        fault.callCount = static_cast<unsigned>(node.at("count", "").integer(1, kHighestInt));
    if (node.has("fromMs"))
        fault.from = node.at("fromMs", "").time();
    if (node.has("untilMs"))
        fault.until = node.at("untilMs", "").time();
    if (node.has("code"))
        fault.code = readFaultCode(node.at("code", ""));
    if (node.has("latencyMs"))
        fault.latency = modem::Latency::fixed(node.at("latencyMs", "").time());
    if (!fault.firstCall && !fault.from && !fault.until)
        node.refuse("an object that says when: by call, count, fromMs or untilMs");
    if (!fault.code && !fault.latency)
        node.refuse("an object that says what: by code or latencyMs");
    return fault;
}

std::vector<unsigned char> readHex(const JsonNode& node)
{
    const char* const accepted = "pairs of hexadecimal digits";
    const std::string digits = node.text(accepted);
    if (digits.size() % 2 != 0 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        node.refuse(accepted);
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

TimedEvent readEvent(const JsonNode& node)
{
    node.requireKeys({"atMs", "id", "payload"});
    TimedEvent event;
    event.at = node.at("atMs", "a time in milliseconds").time();
    event.id = static_cast<int>(node.at("id", "an event id").integer(0, kHighestInt));
    if (node.has("payload"))
        event.payload = readHex(node.at("payload", ""));
    return event;
}

LstaSystem readLstaSystem(const JsonNode& node)
{
    const std::string accepted = "GPS, Glonass, BeiDou, Galileo";
    const std::string name = node.text(accepted);
    if (name == "GPS")
        return LstaSystem::gps;
    if (name == "Glonass")
        return LstaSystem::glonass;
    if (name == "BeiDou")
        return LstaSystem::beidou;
    if (name == "Galileo")
        return LstaSystem::galileo;
    node.refuse(accepted);
}

LstaChange readLstaChange(const JsonNode& node)
{
    node.requireKeys({"atMs", "system", "status", "value"});
    LstaChange change;
    change.at = node.at("atMs", "a time in milliseconds").time();
    change.system = readLstaSystem(node.at("system", "GPS, Glonass, BeiDou, Galileo"));
    change.status = static_cast<int>(node.at("status", "a status").integer(-kHighestInt, kHighestInt));
    if (node.has("value"))
        change.value = node.at("value", "").number(-1e9, 1e9);
    return change;
}

std::map<std::string, std::string> readSettings(const JsonNode& node)
{
    node.requireKeys(modem::Settings::keys());
    std::map<std::string, std::string> settings;
    for (const JsonNode& each : node.members()) {
        const std::string accepted = modem::Settings::accepted(each.key()) + ", as text without further quotes";
        const std::string plain = each.text(accepted);
        using Write = modem::Settings::Write;
        const Write outcome = modem::Settings().write(each.key(), modem::Settings::quote(plain));
        if (outcome != Write::changed && outcome != Write::same)
            each.refuse(accepted);
        settings[each.key()] = plain;
    }
    return settings;
}

std::vector<Waypoint> readRoute(const JsonNode& node)
{
    std::vector<Waypoint> route;
    for (const JsonNode& each : node.elements()) {
        each.requireKeys({"latitudeDeg", "longitudeDeg", "altitudeM", "speedMps"});
        Waypoint waypoint;
        waypoint.latitudeDeg = each.at("latitudeDeg", "-89 to 89").number(-89, 89);
        waypoint.longitudeDeg = each.at("longitudeDeg", "-180 to 180").number(-180, 180);
        if (each.has("altitudeM"))
            waypoint.altitudeM = each.at("altitudeM", "").number(-500, 9000);
        if (each.has("speedMps"))
            waypoint.speedMps = each.at("speedMps", "").number(0, 300);
        route.push_back(waypoint);
    }
    if (route.empty())
        node.refuse("an array of at least one waypoint");
    for (std::size_t i = 0; i + 1 < route.size(); ++i)
        if (route[i].speedMps <= 0)
            node.elements()[i].refuse("a waypoint with a speedMps above 0, on the way to the next one");
    return route;
}

void readReplay(const JsonNode& node, const std::string& scenarioFile, ReceiverScenario& receiver)
{
    node.requireKeys({"file", "speed", "loop"});
    const std::string name = node.at("file", "the name of a recording").text("the name of a recording");
    if (name.empty())
        node.at("file", "").refuse("the name of a recording");
    receiver.replayFile = (std::filesystem::path(scenarioFile).parent_path() / name).string();
    if (node.has("speed"))
        receiver.replaySpeed = node.at("speed", "").number(0.01, 1000);
    if (node.has("loop"))
        receiver.replayLoop = node.at("loop", "").flag();
}

void readFirstFix(const JsonNode& node, modem::Scenario& scenario)
{
    node.requireKeys({"coldMs", "hotMs"});
    if (node.has("coldMs"))
        scenario.coldFirstFix = node.at("coldMs", "").time();
    if (node.has("hotMs"))
        scenario.hotFirstFix = node.at("hotMs", "").time();
}

template <typename Element, typename Read>
std::vector<Element> readList(const JsonNode& node, const Read& read)
{
    std::vector<Element> list;
    for (const JsonNode& each : node.elements())
        list.push_back(read(each));
    return list;
}

template <typename Element>
std::vector<Element> inOrderOfTime(std::vector<Element> list)
{
    std::stable_sort(list.begin(), list.end(), [](const Element& a, const Element& b) { return a.at < b.at; });
    return list;
}

std::string contentOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    if (!stream || !content)
        throw ScenarioError(file + ": cannot be read: " + std::strerror(errno) +
                            "; accepted: the name of a scenario file");
    return content.str();
}

}  // namespace

ScenarioFile parseScenario(const std::string& file, const std::string& text)
{
    const nlohmann::json document = parseJson(file, text);
    const JsonNode root(file, document);
    root.requireKeys(
        {"seed", "latencies", "engineStartMs", "firstFix", "settings", "faults", "events", "lsta", "route", "replay"});
    ScenarioFile scenario;
    if (root.has("seed"))
        scenario.modem.seed = static_cast<std::uint64_t>(
            root.at("seed", "").integer(0, std::numeric_limits<decltype(scenario.receiver.seed)>::max()));
    scenario.receiver.seed = static_cast<decltype(scenario.receiver.seed)>(scenario.modem.seed);
    if (root.has("latencies"))
        scenario.modem.realisticLatency = root.at("latencies", "").flag();
    if (root.has("engineStartMs"))
        scenario.modem.engineStart = root.at("engineStartMs", "").time();
    if (root.has("firstFix"))
        readFirstFix(root.at("firstFix", ""), scenario.modem);
    if (root.has("settings"))
        scenario.modem.settings = readSettings(root.at("settings", ""));
    if (root.has("faults"))
        scenario.modem.faults = readList<Fault>(root.at("faults", ""), readFault);
    if (root.has("events"))
        scenario.modem.events = inOrderOfTime(readList<TimedEvent>(root.at("events", ""), readEvent));
    if (root.has("lsta"))
        scenario.modem.lstaChanges = inOrderOfTime(readList<LstaChange>(root.at("lsta", ""), readLstaChange));
    if (root.has("route"))
        scenario.receiver.route = readRoute(root.at("route", ""));
    if (root.has("replay"))
        readReplay(root.at("replay", ""), file, scenario.receiver);
    return scenario;
}

ScenarioFile scenarioOfEnvironment()
{
    ScenarioFile scenario;
    const char* const file = std::getenv("ARCSIM_SCENARIO");
    if (file != nullptr && *file != '\0')
        scenario = parseScenario(file, contentOf(file));
    const char* const recording = std::getenv("ARCSIM_REPLAY");
    if (recording != nullptr && *recording != '\0')
        scenario.receiver.replayFile = recording;
    return scenario;
}

}  // namespace arcsim
