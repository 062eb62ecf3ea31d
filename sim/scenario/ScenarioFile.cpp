#include "scenario/ScenarioFile.h"

#include "modem/Settings.h"
#include "scenario/EventFile.h"
#include "scenario/FaultFile.h"
#include "scenario/FileText.h"
#include "scenario/JsonText.h"
#include "scenario/ReceiverFile.h"
#include "scenario/SystemNames.h"
#include "support/Files.h"
#include "support/Words.h"

#include <algorithm>
#include <limits>

namespace arcsim {

namespace {

using modem::Fault;
using modem::LstaChange;
using modem::Outage;

constexpr long long kHighestInt = std::numeric_limits<int>::max();

LstaChange readLstaChange(const JsonNode& node)
{
    node.requireKeys({"atMs", "system", "status", "value"});
    LstaChange change;
    change.at = node.at("atMs", "a time in milliseconds").time();
    change.system = readLstaSystem(node.at("system", support::joined(lstaSystemNames())));
    change.status = static_cast<int>(node.at("status", "a status").integer(-kHighestInt, kHighestInt));
    if (const auto value = node.find("value"))
        change.value = value->number(-1e9, 1e9);
    return change;
}

Outage readOutage(const JsonNode& node)
{
    node.requireKeys({"atMs", "forMs"});
    const auto from = node.at("atMs", "a time in milliseconds").time();
    const auto length = node.at("forMs", "a time in milliseconds").integer(1, kLatestTime.count());
    return {from, from + std::chrono::milliseconds(length)};
}

constexpr const char* kReadOnly = "nothing (read only)";  // the same words as in the settings

std::map<std::string, std::string> readSettings(const JsonNode& node)
{
    node.requireKeys(modem::Settings::keys());
    std::map<std::string, std::string> settings;
    for (const JsonNode& each : node.members()) {
        std::string accepted = modem::Settings::accepted(each.key());
        if (accepted != kReadOnly)
            accepted += ", as text without further quotes";
        const std::string plain = each.text(accepted);
        using Write = modem::Settings::Write;
        const Write outcome = modem::Settings().write(each.key(), modem::Settings::quote(plain));
        if (outcome != Write::changed && outcome != Write::same)
            each.refuse(accepted);
        settings[each.key()] = plain;
    }
    return settings;
}

void readFirstFix(const JsonNode& node, modem::Scenario& scenario)
{
    node.requireKeys({"coldMs", "hotMs"});
    if (const auto cold = node.find("coldMs"))
        scenario.coldFirstFix = cold->time();
    if (const auto hot = node.find("hotMs"))
        scenario.hotFirstFix = hot->time();
}

template <typename Element, typename Read>
std::vector<Element> readList(const JsonNode& node, const Read& read)
{
    std::vector<Element> list;
    for (const JsonNode& each : node.elements())
        list.push_back(read(each));
    return list;
}

/// `time` is the member with an element's start.
template <typename Element>
std::vector<Element> inOrderOfTime(std::vector<Element> list, std::chrono::milliseconds Element::*time)
{
    std::stable_sort(list.begin(), list.end(), [&](const Element& a, const Element& b) { return a.*time < b.*time; });
    return list;
}

void readModem(const JsonNode& root, modem::Scenario& scenario)
{
    if (const auto latencies = root.find("latencies"))
        scenario.realisticLatency = latencies->flag();
    if (const auto start = root.find("engineStartMs"))
        scenario.engineStart = start->time();
    if (const auto firstFix = root.find("firstFix"))
        readFirstFix(*firstFix, scenario);
    if (const auto settings = root.find("settings"))
        scenario.settings = readSettings(*settings);
    if (const auto faults = root.find("faults"))
        scenario.faults = readList<Fault>(*faults, [](const JsonNode& each) { return readFault(each, false); });
    if (const auto events = root.find("events"))
        scenario.events = readEvents(*events);
    if (const auto lsta = root.find("lsta"))
        scenario.lstaChanges = inOrderOfTime(readList<LstaChange>(*lsta, readLstaChange), &LstaChange::at);
    if (const auto outages = root.find("outages"))
        scenario.outages = inOrderOfTime(readList<Outage>(*outages, readOutage), &Outage::from);
}

}  // namespace

ScenarioFile parseScenario(const std::string& file, const std::string& text)
{
    const nlohmann::json document = parseJson(file, text);
    const JsonNode root(file, document, text);
    root.requireKeys({"$schema", "seed", "startUtc", "latencies", "engineStartMs", "firstFix", "settings", "faults",
                      "events", "lsta", "outages", "route", "satellites", "jamming", "noFix", "replay"});
    if (const auto schema = root.find("$schema"))
        schema->text("a text");
    ScenarioFile scenario;
    using Seed = decltype(scenario.receiver.seed);
    if (const auto seed = root.find("seed"))
        scenario.receiver.seed = static_cast<Seed>(seed->integer(0, std::numeric_limits<Seed>::max()));
    scenario.modem.seed = scenario.receiver.seed;
    readModem(root, scenario.modem);
    readReceiver(root, file, scenario.receiver);
    return scenario;
}

ScenarioFile scenarioOf(const std::string& file, const std::string& recording)
{
    ScenarioFile scenario;
    if (!file.empty())
        scenario = parseScenario(file, contentOf(file, "the name of a scenario file"));
    if (!recording.empty())
        scenario.receiver.replayFile = recording;
    return scenario;
}

ScenarioFile scenarioOfEnvironment()
{
    return scenarioOf(support::fileOfEnvironment("ARCSIM_SCENARIO"), support::fileOfEnvironment("ARCSIM_REPLAY"));
}

}  // namespace arcsim
