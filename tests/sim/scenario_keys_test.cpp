#include "sim/scenario_support.h"

#include <gtest/gtest.h>

namespace {

using arcsim::ScenarioFile;
using arcsim::modem::Latency;
using arcsim::modem::LstaSystem;
using scenario_test::errorOf;
using scenario_test::scenarioOf;
using std::chrono::milliseconds;

using Systems = std::array<bool, 6>;  // gps glonass galileo beidou qzss sbas

TEST(ScenarioKeys, LeftOutChangeNothing)
{
    const ScenarioFile scenario = scenarioOf("{}");
    EXPECT_TRUE(scenario.modem.outages.empty());
    EXPECT_TRUE(scenario.receiver.jamming.empty());
    EXPECT_TRUE(scenario.receiver.noFix.empty());
    EXPECT_EQ(scenario.receiver.carrierOffsetDbHz, 0);
    EXPECT_EQ(scenario.receiver.systems, (Systems{true, true, true, true, true, true}));
    EXPECT_EQ(scenario.receiver.seed, 1U);
    EXPECT_EQ(scenario.receiver.startUtc.time_since_epoch(), std::chrono::seconds(1718161200));
    EXPECT_EQ(scenario.receiver.route.size(), 8U);
    EXPECT_EQ(scenario.receiver.route[0].wait, milliseconds(0));
}

TEST(ScenarioKeys, MayNameASchema)
{
    EXPECT_EQ(errorOf(R"({"$schema": "scenario.schema.json"})"), "accepted");
    EXPECT_EQ(errorOf(R"({"$schema": ""})"), "accepted");
    EXPECT_EQ(errorOf(R"({"$schema": 7})"), "s.json:1: $schema: 7 is not accepted; accepted: a text");
}

TEST(ScenarioKeys, SayWhenAndHowOftenAFaultApplies)
{
    const auto faults = scenarioOf(R"({"faults": [{"function": "ARC_Open", "times": 2, "code": 31},
        {"function": "ARC_Open", "call": 2, "count": 3, "fromMs": 4, "untilMs": 5, "times": 6, "code": 7}]})")
                            .modem.faults;
    ASSERT_EQ(faults.size(), 2U);
    EXPECT_EQ(faults[0].times, 2U);
    EXPECT_FALSE(faults[0].firstCall || faults[0].from || faults[0].until);
    EXPECT_EQ(faults[1].firstCall, 2U);
    EXPECT_EQ(faults[1].callCount, 3U);
    EXPECT_EQ(faults[1].from, milliseconds(4));
    EXPECT_EQ(faults[1].until, milliseconds(5));
    EXPECT_EQ(faults[1].times, 6U);
}

TEST(ScenarioKeys, SayWhatAFaultDoes)
{
    const auto faults = scenarioOf(R"({"faults": [
        {"function": "ARC_CheckModuleSetting", "call": 1, "hang": true, "indicator": -3, "replyLength": 200,
         "quotes": false},
        {"function": "ARC_StopGNSS", "call": 1, "latencyMs": {"min": 10, "max": 30}},
        {"function": "ARC_StopGNSS", "call": 2, "latencyMs": {"mean": 500, "deviation": 50}},
        {"function": "ARC_StopGNSS", "call": 3, "latencyMs": 7}]})")
                            .modem.faults;
    ASSERT_EQ(faults.size(), 4U);
    EXPECT_TRUE(faults[0].hangs);
    EXPECT_EQ(faults[0].indicator, -3);
    EXPECT_EQ(faults[0].replyLength, 200U);
    EXPECT_TRUE(faults[0].withoutQuotes);
    EXPECT_FALSE(faults[0].code || faults[0].latency);
    EXPECT_EQ(faults[1].latency->shape, Latency::Shape::even);
    EXPECT_EQ(faults[1].latency->a, milliseconds(10));
    EXPECT_EQ(faults[1].latency->b, milliseconds(30));
    EXPECT_FALSE(faults[1].hangs || faults[1].indicator || faults[1].replyLength || faults[1].withoutQuotes);
    EXPECT_EQ(faults[2].latency->shape, Latency::Shape::normal);
    EXPECT_EQ(faults[2].latency->a, milliseconds(500));
    EXPECT_EQ(faults[2].latency->b, milliseconds(50));
    EXPECT_EQ(faults[3].latency->shape, Latency::Shape::even);
    EXPECT_EQ(faults[3].latency->a, milliseconds(7));
    EXPECT_EQ(faults[3].latency->b, milliseconds(7));
}

TEST(ScenarioKeys, LetStormsOfEventsRunIntoEachOther)
{
    const auto events = scenarioOf(R"({"events": [
        {"atMs": 100, "id": 1, "count": 3, "everyMs": 50, "payload": "aB"},
        {"atMs": 120, "id": 2, "count": 2, "everyMs": 30, "numbered": true},
        {"atMs": 100, "id": 3, "numbered": false, "payload": ""}]})")
                            .modem.events;
    ASSERT_EQ(events.size(), 6U);
    const int ids[] = {1, 3, 2, 1, 2, 1};
    const int times[] = {100, 100, 120, 150, 150, 200};
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(events[i].id, ids[i]) << i;
        EXPECT_EQ(events[i].at, milliseconds(times[i])) << i;
    }
    EXPECT_EQ(events[5].payload, (std::vector<unsigned char>{0xAB}));
    EXPECT_EQ(events[2].payload, (std::vector<unsigned char>{0, 0, 0, 0}));
    EXPECT_EQ(events[4].payload, (std::vector<unsigned char>{1, 0, 0, 0}));
    EXPECT_TRUE(events[1].payload.empty());
}

TEST(ScenarioKeys, ExpandALargeStormAtOnce)
{
    const auto events =
        scenarioOf(R"({"events": [{"atMs": 5, "id": 9, "count": 100000, "everyMs": 0, "numbered": true}]})")
            .modem.events;
    ASSERT_EQ(events.size(), 100000U);
    EXPECT_EQ(events.back().at, milliseconds(5));
    EXPECT_EQ(events.back().payload, (std::vector<unsigned char>{0x9F, 0x86, 0x01, 0x00}));
    EXPECT_EQ(events[256].payload, (std::vector<unsigned char>{0, 1, 0, 0})) << "equal times keep their order";
}

TEST(ScenarioKeys, LetEventsBe200000Altogether)
{
    const std::string two = R"({"atMs": 1, "id": 1, "count": 100000}, {"atMs": 1, "id": 1, "count": 99999})";
    EXPECT_EQ(scenarioOf("{\"events\": [" + two + ",{\"atMs\": 1, \"id\": 1}]}").modem.events.size(), 200000U);
    EXPECT_EQ(errorOf("{\"events\": [" + two + ",\n{\"atMs\": 1, \"id\": 1, \"count\": 2}]}"),
              "s.json:2: events[2]: {\"atMs\":1,\"count\":2,\"id\":1} is not accepted; accepted: at most 200000 events "
              "altogether (with this one 200001)");
}

TEST(ScenarioKeys, LetPayloadsTake8MebibytesAltogether)
{
    const std::string payload(64000, '7');
    const auto storm = [&](int count) {
        return "{\"atMs\": 1, \"count\": " + std::to_string(count) + ", \"id\": 1, \"payload\": \"" + payload + "\"}";
    };
    EXPECT_EQ(scenarioOf("{\"events\": [" + storm(262) + "]}").modem.events.size(), 262U);
    EXPECT_EQ(errorOf("{\"events\": [" + storm(263) + "]}"),
              "s.json:1: events[0]: {\"atMs\":1,\"count\":263,\"id\":1,\"payload\":\"77777777777777777777... is not "
              "accepted; accepted: events with at most 8388608 bytes of payload altogether");
    EXPECT_EQ(errorOf("{\"events\": [" + storm(262) + ",\n" + storm(1) + "]}"),
              "s.json:2: events[1]: {\"atMs\":1,\"count\":1,\"id\":1,\"payload\":\"7777777777777777777777... is not "
              "accepted; accepted: events with at most 8388608 bytes of payload altogether");
}

TEST(ScenarioKeys, PutOutagesInOrderOfTime)
{
    const auto outages =
        scenarioOf(R"({"outages": [{"atMs": 50, "forMs": 10}, {"atMs": 5, "forMs": 1}]})").modem.outages;
    ASSERT_EQ(outages.size(), 2U);
    EXPECT_EQ(outages[0].from, milliseconds(5));
    EXPECT_EQ(outages[0].until, milliseconds(6));
    EXPECT_EQ(outages[1].from, milliseconds(50));
    EXPECT_EQ(outages[1].until, milliseconds(60));
}

TEST(ScenarioKeys, TellTheReceiverWhatIsJammedAndWhenThereIsNoFix)
{
    const auto receiver = scenarioOf(R"({"noFix": [{"fromMs": 1, "untilMs": 2}, {"fromMs": 0, "untilMs": 9}],
        "jamming": [{"fromMs": 3, "untilMs": 4, "systems": ["gps", "QZSS"]},
                    {"fromMs": 5, "untilMs": 6, "systems": "all"}]})")
                              .receiver;
    ASSERT_EQ(receiver.noFix.size(), 2U);
    EXPECT_EQ(receiver.noFix[0].from, milliseconds(1));
    EXPECT_EQ(receiver.noFix[0].until, milliseconds(2));
    EXPECT_EQ(receiver.noFix[1].from, milliseconds(0));
    ASSERT_EQ(receiver.jamming.size(), 2U);
    EXPECT_EQ(receiver.jamming[0].from, milliseconds(3));
    EXPECT_EQ(receiver.jamming[0].until, milliseconds(4));
    EXPECT_EQ(receiver.jamming[0].systems, (Systems{true, false, false, false, true, false}));
    EXPECT_EQ(receiver.jamming[1].systems, (Systems{true, true, true, true, true, true}));
}

TEST(ScenarioKeys, DescribeTheSky)
{
    const auto receiver =
        scenarioOf(R"({"satellites": {"carrierOffsetDbHz": -2.5, "systems": ["Glonass", "galileo"]}})").receiver;
    EXPECT_EQ(receiver.carrierOffsetDbHz, -2.5);
    EXPECT_EQ(receiver.systems, (Systems{false, true, true, false, false, false}));
}

TEST(ScenarioKeys, NameTheSystemsOfAnLstaInAnyCase)
{
    const auto changes = scenarioOf(R"({"lsta": [{"atMs": 0, "system": "GPS", "status": 1},
        {"atMs": 0, "system": "gps", "status": 1}, {"atMs": 0, "system": "BeiDou", "status": 1},
        {"atMs": 0, "system": "GLONASS", "status": 1}, {"atMs": 0, "system": "galileo", "status": 1}]})")
                             .modem.lstaChanges;
    ASSERT_EQ(changes.size(), 5U);
    EXPECT_EQ(changes[0].system, LstaSystem::gps);
    EXPECT_EQ(changes[1].system, LstaSystem::gps);
    EXPECT_EQ(changes[2].system, LstaSystem::beidou);
    EXPECT_EQ(changes[3].system, LstaSystem::glonass);
    EXPECT_EQ(changes[4].system, LstaSystem::galileo);
}

TEST(ScenarioKeys, LetTheVehicleWait)
{
    const auto route = scenarioOf(R"({"route": [{"latitudeDeg": 1, "longitudeDeg": 2, "speedMps": 3, "waitMs": 4},
        {"latitudeDeg": 1, "longitudeDeg": 2}]})")
                           .receiver.route;
    ASSERT_EQ(route.size(), 2U);
    EXPECT_EQ(route[0].wait, milliseconds(4));
    EXPECT_EQ(route[1].wait, milliseconds(0));
}

TEST(ScenarioKeys, SetTheClock)
{
    const auto secondsOf = [](const std::string& time) {
        const auto start = scenarioOf("{\"startUtc\": \"" + time + "\"}").receiver.startUtc;
        return std::chrono::duration_cast<std::chrono::seconds>(start.time_since_epoch()).count();
    };
    EXPECT_EQ(secondsOf("2000-01-01T00:00:00Z"), 946684800);
    EXPECT_EQ(secondsOf("2024-06-12T03:00:00Z"), 1718161200);
    EXPECT_EQ(secondsOf("2024-02-29T23:59:59Z"), 1709251199);
    EXPECT_EQ(secondsOf("2099-12-31T23:59:59Z"), 4102444799);
    for (const char* const time :
         {"1999-12-31T23:59:59Z", "2100-01-01T00:00:00Z", "2023-02-29T00:00:00Z", "2024-13-01T00:00:00Z",
          "2024-00-01T00:00:00Z", "2024-01-00T00:00:00Z", "2024-04-31T00:00:00Z", "2024-01-01T24:00:00Z",
          "2024-01-01T00:60:00Z", "2024-01-01T00:00:60Z", "2024-01-01 00:00:00Z", "2024-01-01T00:00:00",
          "2024-01-01T00:00:00+00:00", "2024-01-01T00:00:00.5Z", "2024-01-01T00:00Z", "24-01-01T00:00:00Z", ""})
        EXPECT_EQ(errorOf("{\"startUtc\": \"" + std::string(time) + "\"}"),
                  "s.json:1: startUtc: \"" + std::string(time) +
                      "\" is not accepted; accepted: a time from \"2000-01-01T00:00:00Z\" to \"2099-12-31T23:59:59Z\", "
                      "written like these");
}

struct RefusedKey
{
    const char* text;
    const char* error;
};

const RefusedKey kRefused[] = {
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "hang": false}]})",
     "s.json:1: faults[0].hang: false is not accepted; accepted: true (leave it out for a call that comes back)"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "hang": 1}]})",
     "s.json:1: faults[0].hang: 1 is not accepted; accepted: true or false"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "quotes": true}]})",
     "s.json:1: faults[0].quotes: true is not accepted; accepted: false (leave it out for a reply as usual)"},
    {R"({"faults": [{"function": "ARC_Open", "fromMs": 5, "untilMs": 5, "code": 1}]})",
     "s.json:1: faults[0].untilMs: 5 is not accepted; accepted: a time after the beginning at 5"},
    {R"({"faults": [{"function": "ARC_Open", "untilMs": 0, "code": 1}]})",
     "s.json:1: faults[0].untilMs: 0 is not accepted; accepted: a time after the beginning at 0"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "latencyMs": "5"}]})",
     "s.json:1: faults[0].latencyMs: \"5\" is not accepted; accepted: a whole number from 0 to 86400000, or an object "
     "with the keys min, max or mean, deviation"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "latencyMs": {}}]})",
     "s.json:1: faults[0].latencyMs: {} is not accepted; accepted: a whole number from 0 to 86400000, or an object "
     "with the keys min, max or mean, deviation"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "latencyMs": {"min": 5}}]})",
     "s.json:1: faults[0].latencyMs.max: missing; accepted: a time in milliseconds"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "latencyMs": {"min": 5, "max": 4}}]})",
     "s.json:1: faults[0].latencyMs.max: 4 is not accepted; accepted: a whole number from 5 (min) to 86400000"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "latencyMs": {"mean": 5}}]})",
     "s.json:1: faults[0].latencyMs.deviation: missing; accepted: a time in milliseconds"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "latencyMs": {"mean": 5, "deviation": 1, "max": 9}}]})",
     "s.json:1: faults[0].latencyMs.deviation: unknown key; accepted: min, max"},
    {R"({"faults": [{"function": "ARC_Open", "call": 1, "latencyMs": {"min": 5, "maximum": 1}}]})",
     "s.json:1: faults[0].latencyMs.maximum: unknown key; accepted: min, max"},
    {R"({"faults": [{"call": 1, "code": 2}]})",
     "s.json:1: faults[0].function: missing; accepted: ARC_SetNotificationMethod, ARC_Open, ARC_Close, "
     "ARC_RegisterNotification, ARC_GetArcVersion, ARC_GetRilVersion, ARC_EnableLogging, ARC_AtcTunneling, "
     "ARC_CheckModuleSetting, ARC_StartGNSSraw, ARC_StopGNSS, ARC_ForceStopGNSS, ARC_ResetAGNSS, ARC_CurrentLSTA, "
     "ARC_EnableLSTA"},
    {R"({"events": [{"atMs": 1, "id": 2, "payload": "", "numbered": true}]})",
     "s.json:1: events[0]: {\"atMs\":1,\"id\":2,\"numbered\":true,\"payload\":\"\"} is not accepted; accepted: an "
     "object "
     "with either payload or numbered"},
    {R"({"events": [{"atMs": 1, "id": 2, "payload": 7}]})",
     "s.json:1: events[0].payload: 7 is not accepted; accepted: pairs of hexadecimal digits, at most 32000"},
    {R"({"events": {"atMs": 1, "id": 2}})",
     "s.json:1: events: {\"atMs\":1,\"id\":2} is not accepted; accepted: an array"},
    {R"({"lsta": [{"atMs": 0, "status": 1}]})",
     "s.json:1: lsta[0].system: missing; accepted: gps, glonass, beidou, galileo"},
    {R"({"lsta": [{"atMs": 0, "system": 10, "status": 1}]})",
     "s.json:1: lsta[0].system: 10 is not accepted; accepted: gps, glonass, beidou, galileo"},
    {R"({"outages": [{"atMs": 0}]})", "s.json:1: outages[0].forMs: missing; accepted: a time in milliseconds"},
    {R"({"outages": [{"forMs": 1}]})", "s.json:1: outages[0].atMs: missing; accepted: a time in milliseconds"},
    {R"({"noFix": [{"untilMs": 1}]})", "s.json:1: noFix[0].fromMs: missing; accepted: a time in milliseconds"},
    {R"({"noFix": [{"fromMs": 1}]})", "s.json:1: noFix[0].untilMs: missing; accepted: a time in milliseconds"},
    {R"({"jamming": [{"fromMs": 1, "untilMs": 2}]})",
     "s.json:1: jamming[0].systems: missing; accepted: \"all\" or a list of gps, glonass, galileo, beidou, qzss, sbas"},
    {R"({"jamming": [{"fromMs": 1, "untilMs": 2, "systems": []}]})",
     "s.json:1: jamming[0].systems: [] is not accepted; accepted: \"all\" or a list of gps, glonass, galileo, beidou, "
     "qzss, sbas"},
    {R"({"jamming": [{"fromMs": 1, "untilMs": 2, "systems": "gps"}]})",
     "s.json:1: jamming[0].systems: \"gps\" is not accepted; accepted: \"all\" or a list of gps, glonass, galileo, "
     "beidou, qzss, sbas"},
    {R"({"jamming": [{"fromMs": 1, "untilMs": 2, "systems": ["gps", "all"]}]})",
     "s.json:1: jamming[0].systems[1]: \"all\" is not accepted; accepted: gps, glonass, galileo, beidou, qzss, sbas"},
    {R"({"satellites": {"systems": [1]}})",
     "s.json:1: satellites.systems[0]: 1 is not accepted; accepted: gps, glonass, galileo, beidou, qzss, sbas"},
    {R"({"satellites": []})",
     "s.json:1: satellites: [] is not accepted; accepted: an object with the keys carrierOffsetDbHz, systems"},
    {R"({"route": "drive.gpx"})",
     "s.json:1: route: \"drive.gpx\" is not accepted; accepted: a list of at least one waypoint, or an object with the "
     "keys gpx, speedMps"},
    {R"({"route": {}})", "s.json:1: route.gpx: missing; accepted: the name of a GPX file"},
    {R"({"route": {"gpx": ""}})", "s.json:1: route.gpx: \"\" is not accepted; accepted: the name of a GPX file"},
    {R"({"route": {"gpx": "a\u0000b"}})",
     "s.json:1: route.gpx: \"a\\u0000b\" is not accepted; accepted: the name of a GPX file"},
    {R"({"route": {"gpx": "/nowhere/drive.gpx"}})",
     "/nowhere/drive.gpx: cannot be read: No such file or directory; accepted: the name of a GPX file"},
    {R"({"route": {"gpx": "/"}})", "/: cannot be read: Is a directory; accepted: the name of a GPX file"},
    {R"({"route": {"gpx": "/dev/zero"}})",
     "/dev/zero: cannot be read: Is no regular file; accepted: the name of a GPX file"},
    {R"({"route": [{"latitudeDeg": 1}]})",
     "s.json:1: route[0].longitudeDeg: missing; accepted: a number from -180 to 180"},
    {R"({"settings": {"Raw/Version": "2"}})",
     "s.json:1: settings.Raw/Version: \"2\" is not accepted; accepted: nothing (read only)"},
};

TEST(ScenarioKeys, WithAMistakeAreRefused)
{
    for (const auto& [text, error] : kRefused)
        EXPECT_EQ(errorOf(text), error);
}

TEST(ScenarioKeys, TakeListsOfLimitedLength)
{
    const auto list = [](std::size_t count, const std::string& element) {
        std::string text = element;
        for (std::size_t i = 1; i < count; ++i)
            text += "," + element;
        return "[" + text + "]";
    };
    EXPECT_EQ(errorOf("{\"noFix\": " + list(10000, R"({"fromMs":1,"untilMs":2})") + "}"), "accepted");
    EXPECT_EQ(errorOf("{\"noFix\": " + list(10001, "1") + "}"),
              "s.json:1: noFix: 10001 elements are not accepted; accepted: at most 10000");
    EXPECT_EQ(errorOf("{\"events\": " + list(200001, "1") + "}"),
              "s.json:1: events: 200001 elements are not accepted; accepted: at most 200000");
    EXPECT_EQ(errorOf("{\"route\": " + list(100000, R"({"latitudeDeg":1,"longitudeDeg":2,"speedMps":3})") + "}"),
              "accepted");
    EXPECT_EQ(errorOf("{\"route\": " + list(100001, "1") + "}"),
              "s.json:1: route: 100001 elements are not accepted; accepted: at most 100000");
}

}  // namespace
