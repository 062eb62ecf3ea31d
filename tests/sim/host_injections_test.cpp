// Events, jamming, lost fixes and LSTA levels that somebody causes while the scenario runs.

#include "sim/host_support.h"

#include <gtest/gtest.h>

namespace {

using namespace host_test;
using arcsim::BlockedSystems;
using arcsim::GnssSystem;
using arcsim::indexOf;
using arcsim::modem::LstaSystem;
using arcsim::modem::TimedEvent;

TEST(HostEvents, ComeInOrderOfTimeAndThenOfTheirComing)
{
    VirtualHost host;
    Client client(host);
    client.open();
    host.advanceTo(milliseconds(1000));
    host.injectEvents({{milliseconds(20), 1, {}}, {milliseconds(10), 2, {}}, {milliseconds(20), 3, {}}});
    host.injectEvents({{milliseconds(15), 4, {}}, {milliseconds(20), 5, {}}, {milliseconds(0), 6, {}}});
    host.advanceTo(milliseconds(1009));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{6}));
    host.advanceTo(milliseconds(1010));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{2}));
    host.advanceTo(milliseconds(2000));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{4, 1, 3, 5}));
    EXPECT_TRUE(host.takeEvents().empty());
}

TEST(HostEvents, CountFromWhenTheyWereInjected)
{
    VirtualHost host;
    Client client(host);
    client.open();
    host.injectEvents({{milliseconds(100), 1, {}}});
    host.advanceTo(milliseconds(60));
    host.injectEvents({{milliseconds(30), 2, {}}, {milliseconds(40), 3, {}}});
    host.advanceTo(milliseconds(99));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{2}));
    host.advanceTo(milliseconds(100));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{1, 3}));
}

TEST(HostEvents, KeepTheirPayloads)
{
    VirtualHost host;
    host.injectEvents({{milliseconds(0), 75, {0, 1, 255}}});
    const auto events = host.takeEvents();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].payload, (std::vector<unsigned char>{0, 1, 255}));
    EXPECT_FALSE(events[0].lsta);
    EXPECT_TRUE(host.wantsLook()) << "scenario time has begun with it";
}

TEST(HostEvents, ComeInStormsOfAnySize)
{
    constexpr std::size_t kMany = 100000;
    VirtualHost host;
    for (int id = 1; id <= 2; ++id) {
        std::vector<TimedEvent> storm;
        for (std::size_t i = 0; i < kMany; ++i)
            storm.push_back({milliseconds(i / 1000), id, {}});
        host.injectEvents(std::move(storm));  // the second one goes between those of the first
    }
    host.advanceTo(milliseconds(0));
    EXPECT_EQ(host.takeEvents().size(), 2000U);
    host.advanceTo(milliseconds(100));
    const std::vector<int> ids = idsOf(host.takeEvents());
    ASSERT_EQ(ids.size(), 2 * kMany - 2000);
    for (std::size_t i = 0; i < ids.size(); ++i)
        ASSERT_EQ(ids[i], i % 2000 < 1000 ? 1 : 2) << i;
}

TEST(HostEvents, OfTheScenarioAreLostWithoutAnOpenConnection)
{
    VirtualHost host(R"("events":[{"atMs":10,"id":1},{"atMs":20,"id":2}])");
    Client client(host);
    client.open();
    client.close();
    host.advanceTo(milliseconds(10));
    client.open();
    host.advanceTo(milliseconds(20));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{2}));
}

/// GPS and GLONASS are heard well when this begins, at 10 s.
class HostReception : public testing::Test
{
protected:
    HostReception()
    {
        EXPECT_EQ(client.open(), 0);
        EXPECT_EQ(client.start(), 0);
        host.advanceTo(milliseconds(10000));
        EXPECT_GT(tracked(GnssSystem::Gps), 0);
        EXPECT_EQ(fix(), arcsim::FixState::Fix3D);
    }
    int tracked(GnssSystem system) const { return host.output().feed().status().of(system).tracked; }
    arcsim::FixState fix() const { return host.output().feed().status().fix; }
    static BlockedSystems only(GnssSystem system)
    {
        BlockedSystems systems{};
        systems[indexOf(system)] = true;
        return systems;
    }
    bool isJammed(GnssSystem system) const { return host.interference().blocked[indexOf(system)]; }

    VirtualHost host{R"("firstFix":{"coldMs":0})"};
    Client client{host};
};

TEST_F(HostReception, IsJammedForItsTime)
{
    host.setJammed(only(GnssSystem::Gps), true, milliseconds(2500));
    EXPECT_TRUE(isJammed(GnssSystem::Gps));
    EXPECT_FALSE(isJammed(GnssSystem::Glonass));
    host.advanceTo(milliseconds(11000));
    EXPECT_EQ(tracked(GnssSystem::Gps), 0);
    EXPECT_GT(tracked(GnssSystem::Glonass), 0);
    host.advanceTo(milliseconds(12499));
    EXPECT_TRUE(isJammed(GnssSystem::Gps));
    EXPECT_EQ(tracked(GnssSystem::Gps), 0);
    host.advanceTo(milliseconds(12500));
    EXPECT_FALSE(isJammed(GnssSystem::Gps));
    host.advanceTo(milliseconds(30000));
    EXPECT_GT(tracked(GnssSystem::Gps), 0);
}

TEST_F(HostReception, IsJammedUntilThatIsTakenBack)
{
    host.setJammed(only(GnssSystem::Gps), true, std::nullopt);
    host.setJammed(only(GnssSystem::Glonass), true, milliseconds(1000000));
    host.advanceTo(milliseconds(500000));
    EXPECT_TRUE(isJammed(GnssSystem::Gps));
    host.setJammed(only(GnssSystem::Gps), false, std::nullopt);
    EXPECT_FALSE(isJammed(GnssSystem::Gps));
    EXPECT_TRUE(isJammed(GnssSystem::Glonass)) << "another system is no matter";
    host.advanceTo(milliseconds(1010000));
    EXPECT_FALSE(isJammed(GnssSystem::Glonass));
}

TEST_F(HostReception, HasNoFixForItsTime)
{
    EXPECT_FALSE(host.interference().noFix);
    host.setNoFix(true, milliseconds(1500));
    EXPECT_TRUE(host.interference().noFix);
    host.advanceTo(milliseconds(11000));
    EXPECT_EQ(fix(), arcsim::FixState::None);
    EXPECT_GT(tracked(GnssSystem::Gps), 0);
    host.advanceTo(milliseconds(11499));
    EXPECT_TRUE(host.interference().noFix);
    host.advanceTo(milliseconds(11500));
    EXPECT_FALSE(host.interference().noFix);
    host.advanceTo(milliseconds(12000));
    EXPECT_EQ(fix(), arcsim::FixState::Fix3D);
}

TEST_F(HostReception, HasNoFixUntilThatIsTakenBack)
{
    host.setNoFix(true, std::nullopt);
    host.advanceTo(milliseconds(1000000));
    EXPECT_TRUE(host.interference().noFix);
    EXPECT_EQ(fix(), arcsim::FixState::None);
    host.setNoFix(false, milliseconds(5));
    EXPECT_FALSE(host.interference().noFix);
    host.advanceTo(milliseconds(1001000));
    EXPECT_EQ(fix(), arcsim::FixState::Fix3D);
}

TEST_F(HostReception, IsDisturbedFromTheNextEpochOn)
{
    host.setNoFix(true, milliseconds(999));
    host.advanceTo(milliseconds(11000));
    EXPECT_EQ(fix(), arcsim::FixState::Fix3D) << "over before the epoch";
    host.setNoFix(true, milliseconds(1001));
    host.advanceTo(milliseconds(12000));
    EXPECT_EQ(fix(), arcsim::FixState::None) << "and this one is not";
}

TEST_F(HostReception, FollowsAPlannedLstaOfZero)
{
    VirtualHost planned(R"("firstFix":{"coldMs":0},"lsta":[{"atMs":2500,"system":"gps","status":0}])");
    Client other(planned);
    other.open();
    other.start();
    const auto gps = [&] { return planned.output().feed().status().of(GnssSystem::Gps).tracked; };
    planned.advanceTo(milliseconds(2000));
    EXPECT_GT(gps(), 0);
    planned.advanceTo(milliseconds(3000));
    EXPECT_EQ(gps(), 0);
    EXPECT_FALSE(planned.interference().blocked[indexOf(GnssSystem::Gps)]) << "that is what controls did";
}

TEST_F(HostReception, FollowsEveryLstaLevelOfItsOwnSystem)
{
    const std::pair<LstaSystem, GnssSystem> systems[] = {{LstaSystem::gps, GnssSystem::Gps},
                                                         {LstaSystem::glonass, GnssSystem::Glonass},
                                                         {LstaSystem::beidou, GnssSystem::Beidou},
                                                         {LstaSystem::galileo, GnssSystem::Galileo}};
    for (const auto& [lsta, system] : systems) {
        host.overrideLsta(lsta, arcsim::modem::LstaLevel{0, 0});
        host.timeAfter(milliseconds(1000));
        for (const auto& [otherLsta, other] : systems)
            EXPECT_EQ(tracked(other) == 0, other == system) << indexOf(system) << indexOf(other);
        host.overrideLsta(lsta, std::nullopt);
        host.timeAfter(milliseconds(30000));
        EXPECT_GT(tracked(system), 0);
    }
}

TEST_F(HostReception, ReportsALevelAtOnce)
{
    client.enableLsta(11);
    host.timeAfter(milliseconds(1000));
    host.takeEvents();
    host.overrideLsta(LstaSystem::glonass, arcsim::modem::LstaLevel{3, 12.5});
    const auto events = host.takeEvents();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].id, 34);
    ASSERT_TRUE(events[0].lsta);
    EXPECT_EQ(events[0].lsta->indicator, 1001);
    EXPECT_EQ(events[0].lsta->status, 3);
    EXPECT_EQ(events[0].lsta->value, 12.5);
}

TEST_F(HostReception, FollowsAForcedSettingAtOnce)
{
    host.forceSetting("Engine/Glonass", "\"0\"");
    host.timeAfter(milliseconds(1000));
    EXPECT_EQ(host.output().feed().status().of(GnssSystem::Glonass).inView, 0);
    EXPECT_EQ(client.read("Engine/Glonass").text, "\"0\"");
}

TEST_F(HostReception, TakesAForcedValueThatNoReceiverKnowsForTheFactorys)
{
    const auto before = host.output().feed().counters().unheard;
    host.forceSetting("Nmea/FreqMs", "\"200\"");
    host.timeAfter(milliseconds(1000));
    EXPECT_EQ(host.output().feed().counters().unheard, before + 5);
    host.forceSetting("Nmea/FreqMs", "gibberish");
    host.timeAfter(milliseconds(2000));
    EXPECT_EQ(host.output().feed().counters().unheard, before + 7);
    EXPECT_EQ(client.read("Nmea/FreqMs").text, "gibberish");
}

TEST_F(HostReception, EndsForGoodWhenTheOutputIsStopped)
{
    host.stopOutput();
    EXPECT_FALSE(host.output().feed().isStarted());
}

}  // namespace
