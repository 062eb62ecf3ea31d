#include "sim/scenario_support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using arcsim::parseScenario;
using arcsim::ScenarioFile;
using arcsim::modem::LstaSystem;
using scenario_test::errorOf;
using std::chrono::milliseconds;

TEST(ScenarioFile, MayBeEmptyAndThenChangesNothing)
{
    const ScenarioFile scenario = parseScenario("s.json", "{}");
    EXPECT_EQ(scenario.modem.seed, 1U);
    EXPECT_TRUE(scenario.modem.realisticLatency);
    EXPECT_EQ(scenario.modem.coldFirstFix, milliseconds(30000));
    EXPECT_EQ(scenario.modem.hotFirstFix, milliseconds(2000));
    EXPECT_EQ(scenario.modem.engineStart, milliseconds(600));
    EXPECT_TRUE(scenario.modem.settings.empty());
    EXPECT_TRUE(scenario.modem.faults.empty());
    EXPECT_TRUE(scenario.modem.events.empty());
    EXPECT_TRUE(scenario.modem.lstaChanges.empty());
    EXPECT_EQ(scenario.receiver.replayFile, "");
}

TEST(ScenarioFile, SetsTheSimpleValues)
{
    const ScenarioFile scenario = parseScenario("s.json", R"({"seed": 4294967295, "latencies": false,
        "engineStartMs": 0, "firstFix": {"coldMs": 6000, "hotMs": 10}, "settings": {"Power/Cpu": "max"}})");
    EXPECT_EQ(scenario.modem.seed, 4294967295U);
    EXPECT_EQ(scenario.receiver.seed, 4294967295U);
    EXPECT_FALSE(scenario.modem.realisticLatency);
    EXPECT_EQ(scenario.modem.engineStart, milliseconds(0));
    EXPECT_EQ(scenario.modem.coldFirstFix, milliseconds(6000));
    EXPECT_EQ(scenario.modem.hotFirstFix, milliseconds(10));
    EXPECT_EQ(scenario.modem.settings.at("Power/Cpu"), "max");
}

TEST(ScenarioFile, ListsFaults)
{
    const auto faults = parseScenario("s.json", R"({"faults": [
        {"function": "ARC_Open", "call": 3, "count": 2, "code": 31, "latencyMs": 7},
        {"function": "ARC_Close", "fromMs": 10, "untilMs": 20, "code": -1},
        {"function": "ARC_StopGNSS", "count": 4, "latencyMs": 9}]})")
                            .modem.faults;
    ASSERT_EQ(faults.size(), 3U);
    EXPECT_EQ(faults[0].request, 1U);
    EXPECT_EQ(faults[0].firstCall, 3U);
    EXPECT_EQ(faults[0].callCount, 2U);
    EXPECT_EQ(faults[0].code, 31);
    EXPECT_EQ(faults[0].latency->a, milliseconds(7));
    EXPECT_EQ(faults[1].firstCall, std::nullopt);
    EXPECT_EQ(faults[1].from, milliseconds(10));
    EXPECT_EQ(faults[1].until, milliseconds(20));
    EXPECT_EQ(faults[1].code, -1);
    EXPECT_EQ(faults[2].firstCall, 1U);
    EXPECT_EQ(faults[2].callCount, 4U);
    EXPECT_EQ(faults[2].code, std::nullopt);
}

TEST(ScenarioFile, PutsEventsAndLstaChangesInOrderOfTime)
{
    const auto modem = parseScenario("s.json", R"({
        "events": [{"atMs": 9, "id": 75, "payload": "00fF"}, {"atMs": 3, "id": 22}],
        "lsta": [{"atMs": 8, "system": "BeiDou", "status": 1, "value": 2.5},
                 {"atMs": 4, "system": "Glonass", "status": 0}]})")
                           .modem;
    ASSERT_EQ(modem.events.size(), 2U);
    EXPECT_EQ(modem.events[0].id, 22);
    EXPECT_TRUE(modem.events[0].payload.empty());
    EXPECT_EQ(modem.events[1].payload, (std::vector<unsigned char>{0, 255}));
    ASSERT_EQ(modem.lstaChanges.size(), 2U);
    EXPECT_EQ(modem.lstaChanges[0].system, LstaSystem::glonass);
    EXPECT_EQ(modem.lstaChanges[1].system, LstaSystem::beidou);
    EXPECT_EQ(modem.lstaChanges[1].value, 2.5);
}

TEST(ScenarioFile, DescribesTheRoute)
{
    const auto route = parseScenario("s.json", R"({"route": [
        {"latitudeDeg": 48.5, "longitudeDeg": -11, "altitudeM": 519, "speedMps": 8},
        {"latitudeDeg": 48.6, "longitudeDeg": 11.25}]})")
                           .receiver.route;
    ASSERT_EQ(route.size(), 2U);
    EXPECT_EQ(route[0].latitudeDeg, 48.5);
    EXPECT_EQ(route[0].longitudeDeg, -11);
    EXPECT_EQ(route[0].altitudeM, 519);
    EXPECT_EQ(route[0].speedMps, 8);
    EXPECT_EQ(route[1].altitudeM, 0);
}

TEST(ScenarioFile, FindsARecordingBesideItself)
{
    const char* const text = R"({"replay": {"file": "drive.nmea", "speed": 2, "loop": true}})";
    const auto receiver = parseScenario("dir/s.json", text).receiver;
    EXPECT_EQ(receiver.replayFile, "dir/drive.nmea");
    EXPECT_EQ(receiver.replaySpeed, 2);
    EXPECT_TRUE(receiver.replayLoop);
    EXPECT_EQ(parseScenario("s.json", text).receiver.replayFile, "drive.nmea");
    EXPECT_EQ(parseScenario("dir/s.json", R"({"replay": {"file": "/a/b"}})").receiver.replayFile, "/a/b");
}

TEST(ScenarioFile, ForTheDemonstrationCanBeSimulated)
{
    const std::filesystem::path file = KELARC_DEMO_SCENARIO;
    std::ifstream stream(file);
    ASSERT_TRUE(stream) << file;
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    const ScenarioFile scenario = parseScenario(file.string(), text);
    EXPECT_EQ(scenario.modem.coldFirstFix, milliseconds(6000));
    EXPECT_EQ(scenario.modem.faults.size(), 2U);
    EXPECT_EQ(scenario.modem.events.size(), 2U);
    ASSERT_EQ(scenario.modem.lstaChanges.size(), 1U);
    EXPECT_EQ(scenario.modem.lstaChanges[0].at, milliseconds(10000));
    EXPECT_GE(scenario.receiver.route.size(), 3U);
}

struct Refused
{
    const char* text;
    const char* message;
};

#define FUNCTIONS                                                                                                      \
    "ARC_SetNotificationMethod, ARC_Open, ARC_Close, ARC_RegisterNotification, ARC_GetArcVersion, ARC_GetRilVersion, " \
    "ARC_EnableLogging, ARC_AtcTunneling, ARC_CheckModuleSetting, ARC_StartGNSSraw, ARC_StopGNSS, ARC_ForceStopGNSS, " \
    "ARC_ResetAGNSS, ARC_CurrentLSTA, ARC_EnableLSTA"

#define ROOT_KEYS                                                                                                      \
    "$schema, seed, startUtc, latencies, engineStartMs, firstFix, settings, faults, events, lsta, outages, route, "    \
    "satellites, jamming, noFix, replay"

const Refused kRefused[] = {
    {"",
     "s.json:1: column 1: syntax error while parsing value - unexpected end of input; expected '[', '{', or a literal"},
    {"{\n  \"seed\": 1,\n}",
     "s.json:3: column 1: syntax error while parsing object key - unexpected '}'; expected string literal"},
    {R"({"seed": 1, "seed": 2})", "s.json:1: the key \"seed\" is given twice in one object"},
    {"[]", "s.json:1: [] is not accepted; accepted: an object with the keys " ROOT_KEYS},
    {R"({"sed": 1})", "s.json:1: sed: unknown key; accepted: " ROOT_KEYS "; did you mean seed?"},
    {R"({"seed": -1})", "s.json:1: seed: -1 is not accepted; accepted: a whole number from 0 to 4294967295"},
    {R"({"seed": 18446744073709551615})",
     "s.json:1: seed: 18446744073709551615 is not accepted; accepted: a whole number from 0 to 4294967295"},
    {R"({"seed": 1.5})", "s.json:1: seed: 1.5 is not accepted; accepted: a whole number from 0 to 4294967295"},
    {R"({"latencies": "no"})", "s.json:1: latencies: \"no\" is not accepted; accepted: true or false"},
    {R"({"engineStartMs": 86400001})",
     "s.json:1: engineStartMs: 86400001 is not accepted; accepted: a whole number from 0 to 86400000"},
    {R"({"firstFix": {"warmMs": 1}})", "s.json:1: firstFix.warmMs: unknown key; accepted: coldMs, hotMs"},
    {R"({"firstFix": 3})", "s.json:1: firstFix: 3 is not accepted; accepted: an object with the keys coldMs, hotMs"},
    {R"({"settings": {"Power/Cpu": "fast"}})",
     "s.json:1: settings.Power/Cpu: \"fast\" is not accepted; accepted: std or max, as text without further quotes"},
    {R"({"settings": {"Nmea/FreqMs": 500}})", "s.json:1: settings.Nmea/FreqMs: 500 is not accepted; accepted: 1000, "
                                              "500, 200 or 100, as text without further quotes"},
    {R"({"settings": {"Sens/MinElevAngle": "50"}})",
     "s.json:1: settings.Sens/MinElevAngle: \"50\" is not accepted; accepted: 5 to 45, as text without further quotes"},
    {R"({"faults": {}})", "s.json:1: faults: {} is not accepted; accepted: an array"},
    {R"({"faults": [{}]})", "s.json:1: faults[0].function: missing; accepted: " FUNCTIONS},
    {R"({"faults": [{"function": "ARC_Reboot"}]})",
     "s.json:1: faults[0].function: \"ARC_Reboot\" is not accepted; accepted: " FUNCTIONS},
    {R"({"faults": [{"function": "ARC_Open", "call": 0, "code": 1}]})",
     "s.json:1: faults[0].call: 0 is not accepted; accepted: a whole number from 1 to 2147483647"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "code": 0}]})",
     "s.json:1: faults[0].code: 0 is not accepted; accepted: a result code other than 0 (leave it out for a call that "
     "only takes longer)"},
    {R"({"faults": [{"function": "ARC_Open", "code": 31}]})",
     "s.json:1: faults[0]: {\"code\":31,\"function\":\"ARC_Open\"} is not accepted; accepted: an object that says "
     "when: by call, count, fromMs, untilMs or times"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1}]})",
     "s.json:1: faults[0]: {\"call\":1,\"function\":\"ARC_Open\"} is not accepted; accepted: an object that says what: "
     "by code, latencyMs, hang, indicator, replyLength or quotes"},
    {R"({"events": [{"id": 22}]})", "s.json:1: events[0].atMs: missing; accepted: a time in milliseconds"},
    {R"({"events": [{"atMs": 1, "id": 22, "payload": "abc"}]})",
     "s.json:1: events[0].payload: \"abc\" is not accepted; accepted: pairs of hexadecimal digits, at most 32000"},
    {R"({"events": [{"atMs": 1, "id": 22}, {"atMs": 1, "id": 22, "payload": "0x"}]})",
     "s.json:1: events[1].payload: \"0x\" is not accepted; accepted: pairs of hexadecimal digits, at most 32000"},
    {R"({"lsta": [{"atMs": 1, "system": "QZSS", "status": 1}]})",
     "s.json:1: lsta[0].system: \"QZSS\" is not accepted; accepted: gps, glonass, beidou, galileo"},
    {R"({"lsta": [{"atMs": 1, "system": "GPS"}]})", "s.json:1: lsta[0].status: missing; accepted: a status"},
    {R"({"route": []})", "s.json:1: route: [] is not accepted; accepted: a list of at least one waypoint, or an object "
                         "with the keys gpx, speedMps"},
    {R"({"route": [{"latitudeDeg": 90, "longitudeDeg": 0}]})",
     "s.json:1: route[0].latitudeDeg: 90 is not accepted; accepted: a number from -89 to 89"},
    {R"({"route": [{"latitudeDeg": 1, "longitudeDeg": 0}, {"latitudeDeg": 2, "longitudeDeg": 0}]})",
     "s.json:1: route[0]: {\"latitudeDeg\":1,\"longitudeDeg\":0} is not accepted; accepted: a waypoint with a speedMps "
     "from 0.01 to 300, on the way to the next one"},
    {R"({"replay": {"speed": 2}})", "s.json:1: replay.file: missing; accepted: the name of a recording"},
    {R"({"replay": {"file": ""}})", "s.json:1: replay.file: \"\" is not accepted; accepted: the name of a recording"},
    {R"({"replay": {"file": "a", "speed": 0}})",
     "s.json:1: replay.speed: 0 is not accepted; accepted: a number from 0.01 to 1000"},
    {R"({"replay": {"file": "a", "length": "0123456789012345678901234567890123456789"}})",
     "s.json:1: replay.length: unknown key; accepted: file, speed, loop"},
    {R"({"seed": "01234567890123456789012345678901234567890123456789012345678901234567890"})",
     "s.json:1: seed: \"01234567890123456789012345678901234567890123456789012345678... is not accepted; accepted: a "
     "whole number from 0 to 4294967295"},
};

TEST(ScenarioFile, WithAMistakeIsRefusedByPlaceValueAndWhatIsAccepted)
{
    for (const auto& [text, message] : kRefused)
        EXPECT_EQ(errorOf(text), message);
}

}  // namespace
