#include "scenario/ReceiverFile.h"

#include "scenario/RouteFile.h"
#include "scenario/Span.h"
#include "scenario/SystemNames.h"
#include "scenario/UtcText.h"
#include "support/Words.h"

namespace arcsim {

namespace {

using std::chrono::milliseconds;

constexpr const char* kTime = "a time in milliseconds";

std::chrono::system_clock::time_point readStartUtc(const JsonNode& node)
{
    const char* const accepted = "a time from \"2000-01-01T00:00:00Z\" to \"2099-12-31T23:59:59Z\", written like these";
    const std::string text = node.text(accepted);
    const auto time = parseUtc(text);
    const bool isWhole = text.size() == std::string("2000-01-01T00:00:00Z").size() && text.back() == 'Z';
    if (!time || !isWhole || text.compare(0, 2, "20") != 0)
        node.refuse(accepted);
    return std::chrono::system_clock::time_point(*time);
}

void readSatellites(const JsonNode& node, ReceiverScenario& scenario)
{
    node.requireKeys({"carrierOffsetDbHz", "systems"});
    if (const auto offset = node.find("carrierOffsetDbHz"))
        scenario.carrierOffsetDbHz = offset->number(-20, 20);
    if (const auto systems = node.find("systems"))
        scenario.systems = readSystems(*systems);
}

Jamming readJamming(const JsonNode& node)
{
    node.requireKeys({"fromMs", "untilMs", "systems"});
    Jamming jamming;
    jamming.from = node.at("fromMs", kTime).time();
    jamming.until = readEnd(node.at("untilMs", kTime), jamming.from);
    jamming.systems = readSystems(node.at("systems", "\"all\" or a list of " + support::joined(systemNames())));
    return jamming;
}

NoFix readNoFix(const JsonNode& node)
{
    node.requireKeys({"fromMs", "untilMs"});
    const milliseconds from = node.at("fromMs", kTime).time();
    return {from, readEnd(node.at("untilMs", kTime), from)};
}

void readReplay(const JsonNode& node, const std::string& scenarioFile, ReceiverScenario& scenario)
{
    const char* const accepted = "the name of a recording";
    node.requireKeys({"file", "speed", "loop"});
    scenario.replayFile = besideScenario(scenarioFile, node.at("file", accepted).fileName(accepted));
    if (const auto speed = node.find("speed"))
        scenario.replaySpeed = speed->number(0.01, 1000);
    if (const auto loop = node.find("loop"))
        scenario.replayLoop = loop->flag();
}

}  // namespace

void readReceiver(const JsonNode& root, const std::string& scenarioFile, ReceiverScenario& scenario)
{
    if (const auto start = root.find("startUtc"))
        scenario.startUtc = readStartUtc(*start);
    if (const auto route = root.find("route"))
        scenario.route = readRoute(*route, scenarioFile);
    if (const auto satellites = root.find("satellites"))
        readSatellites(*satellites, scenario);
    if (const auto jamming = root.find("jamming"))
        for (const JsonNode& each : jamming->elements())
            scenario.jamming.push_back(readJamming(each));
    if (const auto noFix = root.find("noFix"))
        for (const JsonNode& each : noFix->elements())
            scenario.noFix.push_back(readNoFix(each));
    if (const auto replay = root.find("replay"))
        readReplay(*replay, scenarioFile, scenario);
}

}  // namespace arcsim
