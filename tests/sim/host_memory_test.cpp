// State that outlives the daemon's process, and the clock of a scenario.

#include "sim/host_support.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace host_test;

TEST(HostMemory, HasSettingsEngineAndTime)
{
    VirtualHost host;
    Client client(host);
    EXPECT_EQ(host.memory().time, std::nullopt);
    EXPECT_FALSE(host.memory().engineOn);
    client.open();
    EXPECT_EQ(host.memory().time, milliseconds(0));
    client.write("Power/Cpu", "\"max\"");
    client.start();
    host.advanceTo(milliseconds(1234));
    const ModemHost::Memory memory = host.memory();
    EXPECT_EQ(memory.time, milliseconds(1234));
    EXPECT_TRUE(memory.engineOn);
    EXPECT_EQ(memory.quotedSettings.size(), 13U);
    EXPECT_EQ(memory.quotedSettings.at("Power/Cpu"), "\"max\"");
    EXPECT_EQ(memory.quotedSettings.at("Nmea/FreqMs"), "\"1000\"");
}

TEST(HostMemory, CountsAStartingEngineAsOn)
{
    VirtualHost host("", true);
    Client client(host);
    client.open();
    client.start();
    ASSERT_EQ(host.engine(), EngineState::starting);
    EXPECT_TRUE(host.memory().engineOn);
}

TEST(HostMemory, IsTakenUpByTheNextProcess)
{
    VirtualHost host(R"("events":[{"atMs":4999,"id":1},{"atMs":5000,"id":2},{"atMs":5001,"id":3}])");
    ModemHost::Memory memory;
    memory.quotedSettings = {{"Power/Cpu", "\"max\""}, {"Nmea/FreqMs", "\"200\""}};
    memory.engineOn = true;
    memory.time = milliseconds(5000);
    host.restore(memory);
    EXPECT_EQ(host.now(), milliseconds(5000));
    EXPECT_EQ(host.engine(), EngineState::running) << "without starting anew";
    EXPECT_TRUE(host.output().feed().isStarted());
    Client client(host, {"back", 1, true, true, 0, 0});
    EXPECT_EQ(client.read("Power/Cpu").text, "\"max\"");
    EXPECT_EQ(client.read("Power/Psm").text, "\"0\"");
    host.advanceTo(milliseconds(6000));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{3})) << "earlier ones are over";
    EXPECT_EQ(host.output().feed().status().fix, arcsim::FixState::Fix3D) << "it has known its orbits for long";
    EXPECT_GE(host.output().feed().counters().unheard, 5U) << "five epochs a second";
}

TEST(HostMemory, OfAnEngineThatWasOffStartsNone)
{
    VirtualHost host;
    ModemHost::Memory memory;
    memory.time = milliseconds(5000);
    host.restore(memory);
    EXPECT_EQ(host.engine(), EngineState::off);
    EXPECT_FALSE(host.output().feed().isStarted());
    EXPECT_FALSE(host.modem().isOpen());
}

TEST(HostMemory, OfAScenarioThatHadNotBegunLetsItBeginWithTheFirstCall)
{
    VirtualHost host;
    host.restore({{{"Power/Cpu", "\"max\""}}, false, {}});
    EXPECT_FALSE(host.wantsLook());
    Client client(host);
    client.open();
    EXPECT_EQ(host.now(), milliseconds(0));
    EXPECT_EQ(client.read("Power/Cpu").text, "\"max\"");
}

TEST(ScenarioClock, StandsAtZeroBeforeTheScenarioBegins)
{
    for (const auto mode : {ScenarioClock::Mode::real, ScenarioClock::Mode::virtualTime}) {
        ScenarioClock clock(mode);
        EXPECT_FALSE(clock.hasBegun());
        EXPECT_EQ(clock.now(), milliseconds(0));
        clock.begin();
        EXPECT_TRUE(clock.hasBegun());
        EXPECT_EQ(clock.isVirtual(), mode == ScenarioClock::Mode::virtualTime);
    }
}

TEST(ScenarioClock, StandsUntilItIsAdvancedWhenItIsVirtual)
{
    ScenarioClock clock(ScenarioClock::Mode::virtualTime);
    clock.begin();
    clock.advanceTo(milliseconds(500));
    EXPECT_EQ(clock.now(), milliseconds(500));
    clock.advanceTo(milliseconds(499));
    EXPECT_EQ(clock.now(), milliseconds(500)) << "never back";
    clock.begin();
    EXPECT_EQ(clock.now(), milliseconds(500)) << "it has begun already";
    clock.resume(milliseconds(100));
    EXPECT_EQ(clock.now(), milliseconds(100));
}

TEST(ScenarioClock, CountsFromItsBeginWhenItIsReal)
{
    ScenarioClock clock(ScenarioClock::Mode::real);
    const auto before = ScenarioClock::Real::now();
    clock.begin();
    const auto after = ScenarioClock::Real::now();
    EXPECT_GE(clock.realTimeOf(milliseconds(500)), before + milliseconds(500));
    EXPECT_LE(clock.realTimeOf(milliseconds(500)), after + milliseconds(500));
    clock.begin();
    EXPECT_LE(clock.realTimeOf(milliseconds(500)), after + milliseconds(500)) << "it has begun already";
    while (clock.now() < milliseconds(3))
        std::this_thread::yield();
    EXPECT_GE(ScenarioClock::Real::now(), before + milliseconds(3));
}

TEST(ScenarioClock, ResumesAsIfItHadBegunSoLongAgo)
{
    ScenarioClock clock(ScenarioClock::Mode::real);
    const auto before = ScenarioClock::Real::now();
    clock.resume(milliseconds(7000));
    EXPECT_TRUE(clock.hasBegun());
    EXPECT_GE(clock.now(), milliseconds(7000));
    EXPECT_GE(clock.realTimeOf(milliseconds(7000)), before);
    EXPECT_LE(clock.realTimeOf(milliseconds(7000)), ScenarioClock::Real::now());
}

TEST(ScenarioClock, TakesItsModeFromAWord)
{
    EXPECT_EQ(arcsim::modeOf("ARCSIM_TIME", ""), ScenarioClock::Mode::real);
    EXPECT_EQ(arcsim::modeOf("ARCSIM_TIME", "real"), ScenarioClock::Mode::real);
    EXPECT_EQ(arcsim::modeOf("ARCSIM_TIME", "virtual"), ScenarioClock::Mode::virtualTime);
    try {
        arcsim::modeOf("ARCSIM_TIME", "Virtual");
        FAIL() << "accepted";
    } catch (const arcsim::ScenarioError& error) {
        EXPECT_STREQ(error.what(), "ARCSIM_TIME: \"Virtual\" is not accepted; accepted: real, virtual");
    }
}

TEST(HostInRealTime, LooksWhenTheNextEventComes)
{
    const auto scenario =
        arcsim::parseScenario("test.json", R"({"latencies":false,"events":[{"atMs":3600000,"id":1}]})");
    ModemHost host(scenario, ScenarioClock::Mode::real);
    EXPECT_FALSE(host.isVirtual());
    EXPECT_EQ(host.nextLook(), std::nullopt);
    EXPECT_FALSE(host.wantsLook());
    Client client(host);
    const auto before = ScenarioClock::Real::now();
    client.open();
    const auto after = ScenarioClock::Real::now();
    EXPECT_TRUE(host.wantsLook());
    const auto look = host.nextLook();
    ASSERT_TRUE(look);
    EXPECT_GE(*look, before + milliseconds(3600000));
    EXPECT_LE(*look, after + milliseconds(3600000));
}

TEST(HostInRealTime, NeedsNoLookWhenNothingIsPlanned)
{
    ModemHost host(arcsim::parseScenario("test.json", R"({"latencies":false})"), ScenarioClock::Mode::real);
    Client client(host);
    client.open();
    EXPECT_EQ(host.nextLook(), std::nullopt);
    EXPECT_FALSE(host.wantsLook());
}

}  // namespace
