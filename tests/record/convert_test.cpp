#include "arcsim/Convert.h"

#include "record/recording_text.h"
#include "scenario/ScenarioFile.h"

#include <gtest/gtest.h>

namespace {

using arcsim::convert;
using nlohmann::ordered_json;
using record_test::RecordingText;

std::string part(const RecordingText& text, const char* key)
{
    return convert(text.recording()).scenario.at(key).dump();
}

std::string read(const std::string& key)
{
    return R"({"key":")" + key + R"(","value":null,"reply":"set","replySize":255,"writeIndicator":null})";
}

std::string write(const std::string& key, const std::string& plain)
{
    return R"({"key":")" + key + R"(","value":"\")" + plain +
           R"(\"","reply":null,"replySize":0,"writeIndicator":"set"})";
}

std::string reply(const std::string& plain)
{
    return R"({"reply":"\")" + plain + R"(\""})";
}

/// Payload and record of an LSTA report: 41.5 dB-Hz of the system with this number.
std::string lstaHex(int system, int status = 1)
{
    return (system == 0   ? "e8030000"
            : system == 1 ? "e9030000"
                          : "ff030000") +
           std::string("00000000") + (status == 1 ? "01000000" : "00000000") + "00000000" +
           (status == 1 ? "0000000000c04440" : "0000000000000000") + std::string(80, '0');
}

std::string record(int indicator, int status, const std::string& value)
{
    return R"({"record":{"indicator":)" + std::to_string(indicator) + R"(,"status":)" + std::to_string(status) +
           R"(,"value":)" + value + "}}";
}

std::string enable(int id, bool on)
{
    return R"({"arcTechnologyId":)" + std::to_string(id) + R"(,"enable":)" + (on ? "true" : "false") +
           R"(,"parameter":0})";
}

TEST(AScenarioOfARecording, IsEmptyWhenNothingHappened)
{
    EXPECT_EQ(convert(RecordingText().recording()).scenario.dump(),
              R"({"settings":{},"faults":[],"events":[],"lsta":[]})");
    EXPECT_EQ(convert(RecordingText().call("ARC_Open", 0, 300000).recording()).scenario.dump(),
              R"({"settings":{},"faults":[],"events":[],"lsta":[]})");
}

TEST(AScenarioOfARecording, HasTheSettingsThatWereReadBeforeTheyWereWritten)
{
    RecordingText text;
    text.begin("ARC_CheckModuleSetting", read("Nmea/FreqMs")).end(39, "{}");
    text.begin("ARC_CheckModuleSetting", read("Nmea/FreqMs")).end(0, reply("500"));
    text.begin("ARC_CheckModuleSetting", read("Nmea/FreqMs")).end(0, reply("200"));
    text.begin("ARC_CheckModuleSetting", write("Power/Psm", "1")).end(0, R"({"writeIndicator":1})");
    text.begin("ARC_CheckModuleSetting", read("Power/Psm")).end(0, reply("1"));
    text.begin("ARC_CheckModuleSetting", write("Power/Cpu", "std")).end(31, "{}");
    text.begin("ARC_CheckModuleSetting", read("Power/Cpu")).end(0, reply("max"));
    EXPECT_EQ(part(text, "settings"), R"({"Nmea/FreqMs":"500","Power/Cpu":"max"})");
}

TEST(AScenarioOfARecording, LeavesOutSettingsThatAScenarioCannotGive)
{
    RecordingText text;
    text.begin("ARC_CheckModuleSetting", read("Raw/Version")).end(0, reply("7.1"));
    text.begin("ARC_CheckModuleSetting", read("Other/Key")).end(0, reply("1"));
    text.begin("ARC_CheckModuleSetting", read("Power/Cpu")).end(0, reply("turbo"));
    text.begin("ARC_CheckModuleSetting", read("Power/Psm")).end(0, R"({"reply":"1"})");
    text.begin("ARC_CheckModuleSetting", read("Nmea/Sbas")).end(0, "{}");
    text.begin("ARC_CheckModuleSetting",
               R"({"key":null,"value":null,"reply":"set","replySize":255,"writeIndicator":null})")
        .end(0, "{}");
    text.begin("ARC_CheckModuleSetting", read("Nmea/DRSync"));
    EXPECT_EQ(part(text, "settings"), "{}");
}

TEST(AScenarioOfARecording, HasTheCallsThatFailed)
{
    RecordingText text;
    text.call("ARC_Open", 31, 120400).call("ARC_Open", 31, 119600).call("ARC_StopGNSS", 0, 90000);
    text.call("ARC_Open", 39, 1000).call("ARC_Open").call("ARC_Open", 39, 3000).call("ARC_StopGNSS", -5, 400);
    EXPECT_EQ(part(text, "faults"), R"([{"function":"ARC_Open","call":1,"count":2,"code":31,"latencyMs":120},)"
                                    R"({"function":"ARC_Open","call":3,"code":39,"latencyMs":1},)"
                                    R"({"function":"ARC_Open","call":5,"code":39,"latencyMs":3},)"
                                    R"({"function":"ARC_StopGNSS","call":2,"code":-5,"latencyMs":0}])");
}

TEST(AScenarioOfARecording, HasTheCallsThatTookLong)
{
    RecordingText text;
    text.call("ARC_Open", 0, 680000).call("ARC_Open", 0, 681000).call("ARC_StopGNSS", 2, 100000);
    text.call("ARC_StopGNSS", 2, 30000000).call("ARC_StopGNSS", 2, 80000);
    text.call("ARC_Close", 0, 90000000000);
    EXPECT_EQ(part(text, "faults"), R"([{"function":"ARC_Open","call":2,"latencyMs":681},)"
                                    R"({"function":"ARC_StopGNSS","call":1,"code":2,"latencyMs":100},)"
                                    R"({"function":"ARC_StopGNSS","call":2,"code":2,"latencyMs":30000},)"
                                    R"({"function":"ARC_StopGNSS","call":3,"code":2,"latencyMs":80},)"
                                    R"({"function":"ARC_Close","call":1,"latencyMs":86400000}])");
}

/// What a busy system's scheduler does is no fault of the modem.
TEST(AScenarioOfARecording, LeavesOutCallsThatAreLateBySomeTensOfMilliseconds)
{
    const std::string gps = R"({"arcTechnologyId":10,"out":"set"})";
    RecordingText text;
    for (const long extraMs : {0, 5, 20, 50, 99}) {
        text.call("ARC_GetArcVersion", 0, extraMs * 1000).call("ARC_ForceStopGNSS", 0, (80 + extraMs) * 1000);
        text.begin("ARC_CurrentLSTA", gps).end(0, "{}", (15 + extraMs) * 1000);
        text.call("ARC_StopGNSS", 0, (150 + extraMs) * 1000);
    }
    EXPECT_EQ(part(text, "faults"), "[]");
    text.call("ARC_GetArcVersion", 0, 100000).call("ARC_ForceStopGNSS", 0, 180000);
    text.begin("ARC_CurrentLSTA", gps).end(0, "{}", 115000).call("ARC_StopGNSS", 0, 301000);
    EXPECT_EQ(part(text, "faults"), R"([{"function":"ARC_GetArcVersion","call":6,"latencyMs":100},)"
                                    R"({"function":"ARC_ForceStopGNSS","call":6,"latencyMs":180},)"
                                    R"({"function":"ARC_CurrentLSTA","call":6,"latencyMs":115},)"
                                    R"({"function":"ARC_StopGNSS","call":6,"latencyMs":301}])");
}

TEST(AScenarioOfARecording, DoesNotPartFailuresForAHiccup)
{
    const std::string gps = R"({"arcTechnologyId":10,"out":"set"})";
    RecordingText text;
    for (const long tookUs : {10000, 60000, 11000})
        text.begin("ARC_CurrentLSTA", gps).end(21, "{}", tookUs);
    EXPECT_EQ(part(text, "faults"), R"([{"function":"ARC_CurrentLSTA","call":1,"count":3,"code":21,"latencyMs":27}])");
}

TEST(AScenarioOfARecording, HasTheCallsThatNeverCameBack)
{
    EXPECT_EQ(part(RecordingText().call("ARC_StopGNSS", 0, 90000).begin("ARC_StopGNSS"), "faults"),
              R"([{"function":"ARC_StopGNSS","call":2,"hang":true}])");
}

TEST(AScenarioOfARecording, HasAVersionThatThereWasNot)
{
    RecordingText text;
    text.begin("ARC_GetArcVersion")
        .end(0, R"({"version":"1"})")
        .begin("ARC_GetArcVersion")
        .end(0, R"({"version":null})");
    EXPECT_EQ(part(text, "faults"), R"([{"function":"ARC_GetArcVersion","call":2,"code":32,"latencyMs":0}])");
}

TEST(AScenarioOfARecording, HasTheEventsByTheTimeSinceTheFirstCall)
{
    RecordingText text;
    text.event(1, "00", 5000).begin("ARC_Open", "{}", 1, 1000).end(0, "{}", 100000);
    text.event(22, "01ff", 200400).event(72, "", 99600).event(-1);
    text.event(34, lstaHex(0)).event(34, "00").event(5, "", 90000000000);
    EXPECT_EQ(part(text, "events"), R"([{"atMs":0,"id":1,"payload":"00"},{"atMs":300,"id":22,"payload":"01ff"},)"
                                    R"({"atMs":400,"id":72},{"atMs":400,"id":34,"payload":")" +
                                        lstaHex(0) + R"("},{"atMs":400,"id":34,"payload":"00"}])");
}

TEST(AScenarioOfARecording, HasTheChangesOfLstaThatWereSeen)
{
    RecordingText text;
    const std::string gps = R"({"arcTechnologyId":10,"out":"set"})";
    text.begin("ARC_CurrentLSTA", gps).end(0, record(1000, 0, "0"), 10000);
    text.begin("ARC_EnableLSTA", enable(10, true)).end(0);
    text.begin("ARC_EnableLSTA", enable(11, true)).end(0);
    text.event(34, lstaHex(0), 90000).event(34, lstaHex(1), 100000).event(34, lstaHex(0));
    text.begin("ARC_CurrentLSTA", gps).end(0, record(1000, 1, "41.5"), 10000);
    text.begin("ARC_CurrentLSTA", gps).end(0, record(1000, 1, "39.25"), 10000);
    text.begin("ARC_CurrentLSTA", gps).end(0, record(1000, 1, "null"), 10000);
    text.begin("ARC_CurrentLSTA", gps).end(0, record(7, 1, "3"), 10000);
    text.begin("ARC_CurrentLSTA", gps).end(12, "{}", 10000);
    text.event(34, lstaHex(0, 0), 100000);
    text.begin("ARC_EnableLSTA", enable(11, false)).end(1);
    text.event(34, lstaHex(1, 0), 0);
    text.begin("ARC_EnableLSTA", enable(11, false)).end(0);
    text.event(34, lstaHex(1), 0).event(34, lstaHex(2), 0);
    EXPECT_EQ(part(text, "lsta"), R"([{"atMs":100,"system":"GPS","status":1,"value":41.5},)"
                                  R"({"atMs":200,"system":"Glonass","status":1,"value":41.5},)"
                                  R"({"atMs":220,"system":"GPS","status":1,"value":39.25},)"
                                  R"({"atMs":350,"system":"GPS","status":0,"value":0.0},)"
                                  R"({"atMs":350,"system":"Glonass","status":0,"value":0.0}])");
    EXPECT_EQ(convert(text.recording()).scenario.at("events").size(), 2U) << "of systems that were not asked for";
}

TEST(AScenarioOfARecording, CanBeSimulated)
{
    RecordingText text;
    text.call("ARC_Open", 31, 120000).call("ARC_Open").event(72, "0a");
    text.begin("ARC_CheckModuleSetting", read("Nmea/FreqMs")).end(0, reply("500"));
    text.begin("ARC_EnableLSTA", enable(10, true)).end().event(34, lstaHex(0), 90000);
    const arcsim::ScenarioFile scenario = arcsim::parseScenario("s.json", convert(text.recording()).scenario.dump());
    EXPECT_EQ(scenario.modem.settings.at("Nmea/FreqMs"), "500");
    ASSERT_EQ(scenario.modem.faults.size(), 1U);
    EXPECT_EQ(scenario.modem.faults[0].code, 31);
    ASSERT_EQ(scenario.modem.events.size(), 1U);
    EXPECT_EQ(scenario.modem.events[0].id, 72);
    ASSERT_EQ(scenario.modem.lstaChanges.size(), 1U);
    EXPECT_EQ(scenario.modem.lstaChanges[0].value, 41.5);
}

/// What a scenario's reader takes of it.
arcsim::ScenarioFile accepted(const arcsim::Converted& converted)
{
    return arcsim::parseScenario("s.json", converted.scenario.dump(4));
}

TEST(AScenarioOfARecording, HasAsManyFaultsAsAScenarioAcceptsAndSaysHowManyAreLeftOut)
{
    RecordingText text;
    for (int i = 0; i < 10002; ++i)
        text.call("ARC_Open", i % 2 == 0 ? 5 : 31);
    text.call("ARC_Open", 31).begin("ARC_StopGNSS");  // goes on with what is left out; never comes back
    const arcsim::Converted converted = convert(text.recording());
    EXPECT_EQ(converted.leftOut,
              std::vector<std::string>{"faults: the last 3 are left out; a scenario has room for 10000"});
    const auto faults = accepted(converted).modem.faults;
    ASSERT_EQ(faults.size(), 10000U);
    EXPECT_EQ(faults.back().code, 31);
}

TEST(AScenarioOfARecording, HasAsManyChangesOfLstaAsAScenarioAccepts)
{
    RecordingText text;
    text.begin("ARC_EnableLSTA", enable(10, true)).end();
    for (int i = 0; i < 10001; ++i)
        text.event(34, lstaHex(0, i % 2 == 0 ? 1 : 0));
    const arcsim::Converted converted = convert(text.recording());
    EXPECT_EQ(converted.leftOut,
              std::vector<std::string>{"lsta: the last 1 are left out; a scenario has room for 10000"});
    EXPECT_EQ(accepted(converted).modem.lstaChanges.size(), 10000U);
}

TEST(AScenarioOfARecording, HasAsManyEventsAsTheTextOfAScenarioHasRoomFor)
{
    RecordingText text;
    const std::string longest(64000, 'a');
    for (int i = 0; i < 200; ++i)
        text.event(72, longest);
    text.event(73, "01");  // behind what is left out
    const arcsim::Converted converted = convert(text.recording());
    EXPECT_EQ(converted.leftOut,
              std::vector<std::string>{"events: the last 5 are left out; a scenario has room for 12 MiB of them"});
    EXPECT_EQ(accepted(converted).modem.events.size(), 196U);
}

TEST(AScenarioOfARecording, LeavesOutAnEventThatIsTooLongAndSaysSo)
{
    RecordingText text;
    text.event(72, std::string(64002, 'a')).event(73, "01");
    const arcsim::Converted converted = convert(text.recording());
    EXPECT_EQ(converted.leftOut, std::vector<std::string>{"events: 1 with more than 32000 bytes are left out"});
    const auto events = accepted(converted).modem.events;
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].id, 73);
}

TEST(AScenarioOfARecording, ThatHasRoomForEverythingSaysNothing)
{
    EXPECT_TRUE(convert(RecordingText().call("ARC_Open", 5).event(72, "01").recording()).leftOut.empty());
}

}  // namespace
