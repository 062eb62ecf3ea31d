#include "sim/scenario_support.h"

#include <gtest/gtest.h>

namespace {

using scenario_test::errorOf;

/// `text` has a @ where the number goes.
struct Range
{
    const char* text;
    const char* path;
    const char* below;
    const char* lowest;
    const char* highest;
    const char* above;
    const char* accepted;
};

#define FAULT(rest) R"({"faults": [{"function": "ARC_Open", )" rest "}]}"
#define TIME "-1", "0", "86400000", "86400001", "a whole number from 0 to 86400000"
#define COUNT "0", "1", "2147483647", "2147483648", "a whole number from 1 to 2147483647"
#define ANY "-2147483648", "-2147483647", "2147483647", "2147483648", "a whole number from -2147483647 to 2147483647"

const Range kRanges[] = {
    {R"({"seed": @})", "seed", "-1", "0", "4294967295", "4294967296", "a whole number from 0 to 4294967295"},
    {R"({"engineStartMs": @})", "engineStartMs", TIME},
    {R"({"firstFix": {"coldMs": @}})", "firstFix.coldMs", TIME},
    {R"({"firstFix": {"hotMs": @}})", "firstFix.hotMs", TIME},
    {FAULT(R"("code": 1, "call": @)"), "faults[0].call", COUNT},
    {FAULT(R"("code": 1, "count": @)"), "faults[0].count", COUNT},
    {FAULT(R"("code": 1, "times": @)"), "faults[0].times", COUNT},
    {FAULT(R"("code": 1, "fromMs": @)"), "faults[0].fromMs", TIME},
    {FAULT(R"("call": 1, "code": @)"), "faults[0].code", ANY},
    {FAULT(R"("call": 1, "indicator": @)"), "faults[0].indicator", ANY},
    {FAULT(R"("call": 1, "replyLength": @)"), "faults[0].replyLength", "0", "1", "4096", "4097",
     "a whole number from 1 to 4096"},
    {FAULT(R"("call": 1, "latencyMs": @)"), "faults[0].latencyMs", TIME},
    {FAULT(R"("call": 1, "latencyMs": {"min": @, "max": 86400000})"), "faults[0].latencyMs.min", TIME},
    {FAULT(R"("call": 1, "latencyMs": {"min": 0, "max": @})"), "faults[0].latencyMs.max", TIME},
    {FAULT(R"("call": 1, "latencyMs": {"mean": @, "deviation": 1})"), "faults[0].latencyMs.mean", TIME},
    {FAULT(R"("call": 1, "latencyMs": {"mean": 1, "deviation": @})"), "faults[0].latencyMs.deviation", TIME},
    {R"({"events": [{"atMs": @, "id": 1}]})", "events[0].atMs", TIME},
    {R"({"events": [{"atMs": 1, "id": @}]})", "events[0].id", "-1", "0", "2147483647", "2147483648",
     "a whole number from 0 to 2147483647"},
    {R"({"events": [{"atMs": 1, "id": 1, "count": @}]})", "events[0].count", "0", "1", "100000", "100001",
     "a whole number from 1 to 100000"},
    {R"({"events": [{"atMs": 1, "id": 1, "count": 2, "everyMs": @}]})", "events[0].everyMs", TIME},
    {R"({"lsta": [{"atMs": @, "system": "gps", "status": 1}]})", "lsta[0].atMs", TIME},
    {R"({"lsta": [{"atMs": 1, "system": "gps", "status": @}]})", "lsta[0].status", ANY},
    {R"({"lsta": [{"atMs": 1, "system": "gps", "status": 1, "value": @}]})", "lsta[0].value", "-1000000001.0",
     "-1000000000", "1e9", "1000000001.0", "a number from -1e+09 to 1e+09"},
    {R"({"outages": [{"atMs": @, "forMs": 1}]})", "outages[0].atMs", TIME},
    {R"({"outages": [{"atMs": 1, "forMs": @}]})", "outages[0].forMs", "0", "1", "86400000", "86400001",
     "a whole number from 1 to 86400000"},
    {R"({"route": [{"latitudeDeg": @, "longitudeDeg": 0}]})", "route[0].latitudeDeg", "-89.01", "-89", "89", "89.01",
     "a number from -89 to 89"},
    {R"({"route": [{"latitudeDeg": 0, "longitudeDeg": @}]})", "route[0].longitudeDeg", "-180.01", "-180", "180",
     "180.01", "a number from -180 to 180"},
    {R"({"route": [{"latitudeDeg": 0, "longitudeDeg": 0, "altitudeM": @}]})", "route[0].altitudeM", "-500.5", "-500",
     "9000", "9000.5", "a number from -500 to 9000"},
    {R"({"route": [{"latitudeDeg": 0, "longitudeDeg": 0, "speedMps": @}]})", "route[0].speedMps", "-0.5", "0", "300",
     "300.5", "a number from 0 to 300"},
    {R"({"route": [{"latitudeDeg": 0, "longitudeDeg": 0, "waitMs": @}]})", "route[0].waitMs", TIME},
    {R"({"satellites": {"carrierOffsetDbHz": @}})", "satellites.carrierOffsetDbHz", "-20.5", "-20", "20", "20.5",
     "a number from -20 to 20"},
    {R"({"replay": {"file": "a", "speed": @}})", "replay.speed", "0.001", "0.01", "1000", "1000.5",
     "a number from 0.01 to 1000"},
};

std::string with(const Range& range, const std::string& value)
{
    std::string text = range.text;
    return text.replace(text.find('@'), 1, value);
}

TEST(ScenarioRange, TakesItsEnds)
{
    for (const Range& range : kRanges) {
        EXPECT_EQ(errorOf(with(range, range.lowest)), "accepted") << range.path;
        EXPECT_EQ(errorOf(with(range, range.highest)), "accepted") << range.path;
    }
}

TEST(ScenarioRange, TakesNothingBeyondThem)
{
    for (const Range& range : kRanges)
        for (const char* const value : {range.below, range.above})
            EXPECT_EQ(errorOf(with(range, value)), "s.json:1: " + std::string(range.path) + ": " + value +
                                                       " is not accepted; accepted: " + range.accepted);
}

TEST(ScenarioRange, TakesNumbersOnly)
{
    for (const Range& range : kRanges)
        for (const char* const value : {"\"1\"", "true", "null", "[1]"}) {
            const std::string error = errorOf(with(range, value));
            EXPECT_EQ(error.substr(0, error.find(" is not")), "s.json:1: " + std::string(range.path) + ": " + value);
        }
}

TEST(ScenarioRange, OfWholeNumbersTakesThemInAnySpelling)
{
    EXPECT_EQ(scenario_test::scenarioOf(R"({"seed": 1e3})").receiver.seed, 1000U);
    EXPECT_EQ(scenario_test::scenarioOf(R"({"seed": 4294967295.0})").receiver.seed, 4294967295U);
    EXPECT_EQ(scenario_test::scenarioOf(R"({"seed": -0.0})").receiver.seed, 0U);
    const std::string refused = " is not accepted; accepted: a whole number from 0 to 4294967295";
    EXPECT_EQ(errorOf(R"({"seed": 0.5})"), "s.json:1: seed: 0.5" + refused);
    EXPECT_EQ(errorOf(R"({"seed": 1e300})"), "s.json:1: seed: 1e+300" + refused);
    EXPECT_EQ(errorOf(R"({"seed": -9223372036854775808})"), "s.json:1: seed: -9223372036854775808" + refused);
    EXPECT_EQ(errorOf(R"({"seed": 9223372036854775808})"), "s.json:1: seed: 9223372036854775808" + refused);
}

TEST(ScenarioRange, OfTheSpeedOnAWayBeginsAboveZero)
{
    const auto route = [](const std::string& speed) {
        return "{\"route\": [{\"latitudeDeg\": 0, \"longitudeDeg\": 0, \"speedMps\": " + speed +
               "},\n{\"latitudeDeg\": 1, \"longitudeDeg\": 0, \"speedMps\": 0}]}";
    };
    EXPECT_EQ(errorOf(route("0.01")), "accepted");
    EXPECT_EQ(
        errorOf(route("0.009")),
        "s.json:1: route[0]: {\"latitudeDeg\":0,\"longitudeDeg\":0,\"speedMps\":0.009} is not accepted; accepted: "
        "a waypoint with a speedMps from 0.01 to 300, on the way to the next one");
}

TEST(ScenarioRange, OfAPayloadEndsAt32000Bytes)
{
    const auto event = [](std::size_t digits) {
        return "{\"events\": [{\"atMs\": 1, \"id\": 1, \"payload\": \"" + std::string(digits, 'f') + "\"}]}";
    };
    EXPECT_EQ(scenario_test::scenarioOf(event(64000)).modem.events.at(0).payload.size(), 32000U);
    EXPECT_EQ(errorOf(event(64002)), "s.json:1: events[0].payload: \"" + std::string(59, 'f') +
                                         "... is not accepted; accepted: pairs of hexadecimal digits, at most 32000");
}

}  // namespace
