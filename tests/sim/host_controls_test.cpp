// Controls: what each of them does, answers and refuses. Their words on the command line are in tests/arcsim.

#include "host/Controls.h"
#include "sim/host_support.h"

#include <gtest/gtest.h>

namespace {

using namespace host_test;
using arcsim::GnssSystem;
using arcsim::indexOf;

class HostControls : public testing::Test
{
protected:
    HostControls() { EXPECT_EQ(client.open(), 0); }

    std::string tell(const std::string& name, const std::string& members = "")
    {
        const std::string text = members.empty() ? "{}" : "{" + members.substr(1) + "}";
        return arcsim::control(host, name, nlohmann::json::parse(text)).dump();
    }
    /// What the refusal says; "accepted" when there was none.
    std::string refusal(const std::string& name, const std::string& members = "")
    {
        try {
            tell(name, members);
        } catch (const arcsim::ScenarioError& error) {
            return error.what();
        }
        return "accepted";
    }

    VirtualHost host{R"("firstFix":{"coldMs":0})"};
    Client client{host};
};

const std::vector<std::string> kNames{"status", "set", "quoted-settings", "latencies", "event", "lsta",  "fault",
                                      "no-fix", "jam", "outage",          "advance",   "clear", "reset", "stop"};

TEST_F(HostControls, HaveNames)
{
    EXPECT_EQ(arcsim::controlNames(), kNames);
    for (std::size_t i = 0; i < kNames.size(); ++i)
        EXPECT_EQ(arcsim::isControl(kNames[i]), i < 11) << kNames[i] << ", the last three are the server's";
    EXPECT_FALSE(arcsim::isControl(""));
    EXPECT_EQ(refusal("jamm"), "control: unknown; accepted: status, set, quoted-settings, latencies, event, lsta, "
                               "fault, no-fix, jam, outage, advance, clear, reset, stop; did you mean jam?");
}

TEST_F(HostControls, RefuseMembersThatTheyDoNotKnow)
{
    for (std::size_t i = 0; i < 11; ++i)
        EXPECT_NE(refusal(kNames[i], R"(,"unknown":1)").find(kNames[i] + ": unknown: unknown key"), std::string::npos)
            << refusal(kNames[i], R"(,"unknown":1)");
}

TEST_F(HostControls, SetASettingThatTheModemAccepts)
{
    EXPECT_EQ(tell("set", R"(,"key":"Power/Cpu","value":"max")"),
              R"({"key":"Power/Cpu","value":"max","before":"std"})");
    EXPECT_EQ(client.read("Power/Cpu").text, "\"max\"");
    EXPECT_EQ(refusal("set", R"(,"key":"Raw/Version","value":"2")"),
              "set: value: \"2\" is not accepted; accepted: nothing (read only)");
    EXPECT_EQ(refusal("set", R"(,"key":"Power/Cpu","value":"fast")"),
              "set: value: \"fast\" is not accepted; accepted: std or max");
    EXPECT_EQ(refusal("set", R"(,"key":"Sens/MinElevAngle","value":"46")"),
              "set: value: \"46\" is not accepted; accepted: 5 to 45");
    EXPECT_NE(refusal("set", R"(,"key":"Power/Gpu","value":"1")").find("set: key: \"Power/Gpu\" is not accepted"),
              std::string::npos);
    EXPECT_EQ(refusal("set", R"(,"key":"Power/Cpu")"), "set: value: missing; accepted: a value without quotes");
    EXPECT_EQ(client.read("Power/Cpu").text, "\"max\"");
}

TEST_F(HostControls, SetEverythingByForce)
{
    EXPECT_EQ(tell("set", R"(,"key":"No/Such","value":"a\"b","force":true)"),
              R"({"key":"No/Such","value":"a\"b","before":""})");
    EXPECT_EQ(client.read("No/Such").text, "\"a\"b\"");
    EXPECT_EQ(tell("set", R"(,"key":"Power/Cpu","quoted":"bare")"), R"({"key":"Power/Cpu"})");
    EXPECT_EQ(client.read("Power/Cpu").text, "bare");
    EXPECT_NE(tell("quoted-settings").find(R"("No/Such":"\"a\"b\"")"), std::string::npos);
    EXPECT_NE(tell("quoted-settings").find(R"("Power/Cpu":"bare")"), std::string::npos);
}

TEST_F(HostControls, SetTextsOfUpTo2048Bytes)
{
    const std::string most(2048, 'x');
    for (const char* const key : {"value", "quoted"}) {
        const std::string begin = R"(,"key":"Power/Cpu","force":true,")" + std::string(key) + "\":\"";
        EXPECT_EQ(refusal("set", begin + most + "\""), "accepted");
        EXPECT_NE(refusal("set", begin + most + "x\"").find("of at most 2048 bytes"), std::string::npos);
    }
    EXPECT_EQ(refusal("set", R"(,"value":"1","force":true,"key":")" + most + "\""), "accepted");
    EXPECT_NE(refusal("set", R"(,"value":"1","force":true,"key":")" + most + "x\"").find("of at most 2048 bytes"),
              std::string::npos);
}

TEST_F(HostControls, SwitchLatencies)
{
    EXPECT_EQ(tell("latencies", R"(,"on":true)"), "{}");
    EXPECT_GE(host.begin(client.id(), Function::Open).latency, milliseconds(280));
    EXPECT_EQ(tell("latencies", R"(,"on":false)"), "{}");
    EXPECT_EQ(host.begin(client.id(), Function::Open).latency, milliseconds(0));
    EXPECT_EQ(refusal("latencies"), "latencies: on: missing; accepted: true or false");
}

TEST_F(HostControls, SendEvents)
{
    EXPECT_EQ(tell("event", R"(,"eventId":75)"), R"({"sent":1,"listeners":1})");
    EXPECT_EQ(tell("event", R"(,"eventId":76,"payload":"00fF","count":3,"everyMs":10)"), R"({"sent":3,"listeners":1})");
    EXPECT_EQ(tell("event", R"(,"eventId":77,"numbered":true,"count":2)"), R"({"sent":2,"listeners":1})");
    host.advanceTo(milliseconds(19));
    const auto events = host.takeEvents();
    EXPECT_EQ(idsOf(events), (std::vector<int>{75, 76, 77, 77, 76}));
    ASSERT_EQ(events.size(), 5U);
    using Bytes = std::vector<unsigned char>;
    EXPECT_EQ(events[0].payload, Bytes{});
    EXPECT_EQ(events[1].payload, (Bytes{0x00, 0xFF}));
    EXPECT_EQ(events[2].payload, (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(events[3].payload, (Bytes{1, 0, 0, 0}));
    host.advanceTo(milliseconds(20));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{76}));
    EXPECT_EQ(refusal("event"), "event: eventId: missing; accepted: an event id");
}

TEST_F(HostControls, SendNoMoreThanSoManyEventsThatAreToCome)
{
    const std::string hundredThousand = R"(,"eventId":76,"count":100000,"everyMs":1)";
    EXPECT_EQ(tell("event", hundredThousand), R"({"sent":100000,"listeners":1})");
    EXPECT_EQ(tell("event", hundredThousand), R"({"sent":100000,"listeners":1})");
    EXPECT_EQ(refusal("event", R"(,"eventId":76)"),
              "event: with those to come already there would be 200001 with 0 bytes of payload; accepted: at most "
              "200000 with 8388608 bytes");
    host.advanceTo(milliseconds(0));
    EXPECT_EQ(host.takeEvents().size(), 2U);
    EXPECT_EQ(tell("event", R"(,"eventId":76,"count":2)"), R"({"sent":2,"listeners":1})");
}

TEST_F(HostControls, SendEventsWithNoMoreThanSoMuchPayloadToCome)
{
    const std::string payload = R"(,"everyMs":1000,"payload":")" + std::string(65536, '0') + '"';
    const std::string shortPayload = R"(,"everyMs":1000,"payload":")" + std::string(32768, '0') + '"';
    EXPECT_EQ(refusal("event", R"(,"eventId":1)" + payload).find("with"), std::string::npos) << "too long for one";
    EXPECT_EQ(tell("event", R"(,"eventId":1,"count":511)" + shortPayload), R"({"sent":511,"listeners":1})");
    EXPECT_EQ(refusal("event", R"(,"eventId":1,"count":2)" + shortPayload),
              "event: with those to come already there would be 513 with 8404992 bytes of payload; accepted: at most "
              "200000 with 8388608 bytes");
    EXPECT_EQ(tell("event", R"(,"eventId":1)" + shortPayload), R"({"sent":1,"listeners":1})") << "exactly as much";
}

TEST_F(HostControls, SetLstaAndGiveItBack)
{
    const auto lsta = [&] {
        return *client.call(Function::CurrentLSTA, {Argument::of(12), Argument::pointer(true)}).lsta;
    };
    EXPECT_EQ(tell("lsta", R"(,"system":"BeiDou","status":-4,"value":7.25)"), "{}");
    EXPECT_EQ(lsta().indicator, 1002);
    EXPECT_EQ(lsta().status, -4);
    EXPECT_EQ(lsta().value, 7.25);
    EXPECT_EQ(tell("lsta", R"(,"system":"beidou","status":2)"), "{}");
    EXPECT_EQ(lsta().value, 0);
    EXPECT_EQ(tell("lsta", R"(,"system":"beidou","auto":true)"), "{}");
    EXPECT_EQ(lsta().status, 0);
    EXPECT_EQ(refusal("lsta", R"(,"system":"beidou","auto":false)"), "lsta: status: missing; accepted: a status");
    EXPECT_EQ(refusal("lsta", R"(,"system":"beidou","status":1,"value":1000000000)"), "accepted");
    EXPECT_NE(refusal("lsta", R"(,"system":"beidou","status":1,"value":1000000001)")
                  .find("lsta: value: 1000000001 is not accepted"),
              std::string::npos);
}

TEST_F(HostControls, InjectFaultsFromNowOn)
{
    EXPECT_EQ(tell("fault", R"(,"function":"ARC_GetRilVersion","call":2,"code":5)"), "{}");
    EXPECT_EQ(client.ask(), 0);
    EXPECT_EQ(client.ask(), 5);
    EXPECT_EQ(client.ask(), 0);
    EXPECT_EQ(tell("fault", R"(,"function":"ARC_GetRilVersion","code":6)"), "{}");
    EXPECT_EQ(client.ask(), 6);
    EXPECT_EQ(client.ask(), 6) << "for ever, without a condition";
    EXPECT_NE(refusal("fault", R"(,"function":"ARC_Open")").find("an object that says what"), std::string::npos);
}

TEST_F(HostControls, InjectNoMoreThanSoManyFaults)
{
    const std::string oneShot = R"(,"function":"ARC_GetRilVersion","times":1,"code":5)";
    for (int i = 0; i < 200; ++i)
        EXPECT_EQ(tell("fault", oneShot), "{}");
    EXPECT_LE(statusOf(host).dump().size(), 65536U);
    EXPECT_EQ(refusal("fault", oneShot),
              "fault: 200 are injected already; accepted: that many at a time; clear drops them");
    EXPECT_EQ(client.ask(), 5) << "which uses them all up";
    EXPECT_EQ(tell("fault", oneShot), "{}");
}

TEST_F(HostControls, TakeTheFixAway)
{
    EXPECT_EQ(tell("no-fix"), "{}");
    EXPECT_TRUE(host.interference().noFix);
    host.advanceTo(milliseconds(100000000));
    EXPECT_TRUE(host.interference().noFix);
    EXPECT_EQ(tell("no-fix", R"(,"off":true)"), "{}");
    EXPECT_FALSE(host.interference().noFix);
    EXPECT_EQ(tell("no-fix", R"(,"forMs":5,"off":false)"), "{}");
    EXPECT_TRUE(host.interference().noFix);
    host.timeAfter(milliseconds(5));
    EXPECT_FALSE(host.interference().noFix);
}

TEST_F(HostControls, JamSystems)
{
    EXPECT_EQ(tell("jam", R"(,"systems":["gps","SBAS"])"), "{}");
    for (const GnssSystem system : arcsim::kGnssSystems)
        EXPECT_EQ(host.interference().blocked[indexOf(system)],
                  system == GnssSystem::Gps || system == GnssSystem::Sbas);
    EXPECT_EQ(tell("jam", R"(,"systems":["gps"],"off":true)"), "{}");
    EXPECT_FALSE(host.interference().blocked[indexOf(GnssSystem::Gps)]);
    EXPECT_TRUE(host.interference().blocked[indexOf(GnssSystem::Sbas)]);
    EXPECT_EQ(tell("jam", R"(,"systems":"all","forMs":7)"), "{}");
    host.timeAfter(milliseconds(6));
    for (const GnssSystem system : arcsim::kGnssSystems)
        EXPECT_TRUE(host.interference().blocked[indexOf(system)]);
    host.timeAfter(milliseconds(1));
    for (const GnssSystem system : arcsim::kGnssSystems)
        EXPECT_FALSE(host.interference().blocked[indexOf(system)]);
    EXPECT_EQ(refusal("jam"), "jam: systems: missing; accepted: \"all\" or a list of gps, glonass, galileo, beidou, "
                              "qzss, sbas");
}

TEST_F(HostControls, CauseAnOutage)
{
    EXPECT_EQ(tell("outage", R"(,"forMs":30)"), "{}");
    EXPECT_EQ(client.ask(), 31);
    host.timeAfter(milliseconds(30));
    EXPECT_EQ(client.ask(), 0);
    EXPECT_EQ(refusal("outage"), "outage: forMs: missing; accepted: a time in milliseconds");
}

TEST_F(HostControls, AdvanceVirtualTimeOnly)
{
    EXPECT_EQ(tell("advance", R"(,"ms":1500)"), R"({"scenarioMs":1500})");
    EXPECT_EQ(tell("advance", R"(,"ms":0)"), R"({"scenarioMs":1500})");
    EXPECT_EQ(tell("advance", R"(,"ms":1)"), R"({"scenarioMs":1501})");
    EXPECT_EQ(refusal("advance", R"(,"ms":86400001)"),
              "advance: ms: 86400001 is not accepted; accepted: a whole number from 0 to 86400000");
    ModemHost real(arcsim::parseScenario("test.json", "{}"), ScenarioClock::Mode::real);
    try {
        arcsim::control(real, "advance", {{"ms", 1}});
        FAIL() << "accepted";
    } catch (const arcsim::ScenarioError& error) {
        EXPECT_STREQ(error.what(), "advance: real time goes on by itself; accepted: only with virtual time "
                                   "(ARCSIM_TIME=virtual)");
    }
}

}  // namespace
