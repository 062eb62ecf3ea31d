// What a scenario does to reception: jamming, lost fixes, weaker signals, systems that are not there.

#include "receiver/Feed.h"
#include "receiver/Receiver.h"

#include "sim/receiver_support.h"

#include <cmath>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

using namespace arcsim;
using namespace receiver_test;
using namespace std::chrono_literals;
using std::chrono::milliseconds;

Jamming jamming(milliseconds from, milliseconds until, std::initializer_list<GnssSystem> systems)
{
    Jamming span{from, until, {}};
    for (const GnssSystem system : systems)
        span.systems[indexOf(system)] = true;
    return span;
}

const std::initializer_list<GnssSystem> kAll = {GnssSystem::Gps,    GnssSystem::Glonass, GnssSystem::Galileo,
                                                GnssSystem::Beidou, GnssSystem::Qzss,    GnssSystem::Sbas};

int tracked(const Receiver& receiver, GnssSystem system, milliseconds at)
{
    return statusOf(receiver.solve({}, {}, at)).of(system).tracked;
}

TEST(ReceiverInterference, JammedSystemIsInViewButNotTrackedFromTheFirstMomentToBeforeTheLast)
{
    ReceiverScenario scenario = hotStart();
    scenario.jamming = {jamming(10s, 20s, {GnssSystem::Gps, GnssSystem::Galileo})};
    const Receiver receiver(scenario);
    EXPECT_GT(tracked(receiver, GnssSystem::Gps, 9999ms), 0);
    EXPECT_EQ(tracked(receiver, GnssSystem::Gps, 10s), 0);
    EXPECT_EQ(tracked(receiver, GnssSystem::Galileo, 10s), 0);
    EXPECT_GT(tracked(receiver, GnssSystem::Beidou, 10s), 0);
    EXPECT_EQ(tracked(receiver, GnssSystem::Gps, 19999ms), 0);
    EXPECT_GT(tracked(receiver, GnssSystem::Gps, 20s), 0);
    const ReceiverStatus jammed = statusOf(receiver.solve({}, {}, 15s));
    EXPECT_GT(jammed.of(GnssSystem::Gps).inView, 0);
    EXPECT_EQ(jammed.fix, FixState::Fix3D) << "the other systems are enough";
}

TEST(ReceiverInterference, JammedIsWhatAnyOfOverlappingSpansSays)
{
    ReceiverScenario scenario = hotStart();
    scenario.jamming = {jamming(10s, 30s, {GnssSystem::Gps}), jamming(20s, 40s, {GnssSystem::Gps, GnssSystem::Sbas})};
    const Receiver receiver(scenario);
    for (int second = 0; second < 50; ++second) {
        const milliseconds at = std::chrono::seconds(second);
        EXPECT_EQ(tracked(receiver, GnssSystem::Gps, at) == 0, second >= 10 && second < 40) << second << " s";
        EXPECT_EQ(tracked(receiver, GnssSystem::Sbas, at) == 0, second >= 20 && second < 40) << second << " s";
    }
}

TEST(ReceiverInterference, JammingOfEverythingLosesTheFixAndTheBlockedSystemsOfTheCallerAdd)
{
    ReceiverScenario scenario = hotStart();
    scenario.jamming = {jamming(10s, 20s, kAll), jamming(30s, 40s, {GnssSystem::Gps})};
    const Receiver receiver(scenario);
    const std::string epoch = receiver.epoch({}, 10s);
    EXPECT_EQ(trackedCount(epoch), 0);
    EXPECT_EQ(sentence(epoch, "RMC")[2], "V");
    BlockedSystems glonass{};
    glonass[indexOf(GnssSystem::Glonass)] = true;
    const ReceiverStatus status = statusOf(receiver.solve({}, {glonass, false}, 30s));
    EXPECT_EQ(status.of(GnssSystem::Gps).tracked, 0);
    EXPECT_EQ(status.of(GnssSystem::Glonass).tracked, 0);
    EXPECT_GT(status.of(GnssSystem::Galileo).tracked, 0);
}

TEST(ReceiverInterference, WithoutAFixSatellitesAreTrackedAndNoneIsUsed)
{
    ReceiverScenario scenario = hotStart();
    scenario.noFix = {{10s, 20s}, {15s, 25s}};
    const Receiver receiver(scenario);
    EXPECT_EQ(receiver.solve({}, {}, 9999ms).fix, FixState::Fix3D);
    EXPECT_EQ(receiver.solve({}, {}, 10s).fix, FixState::None);
    EXPECT_EQ(receiver.solve({}, {}, 20s).fix, FixState::None);
    EXPECT_EQ(receiver.solve({}, {}, 24999ms).fix, FixState::None);
    EXPECT_EQ(receiver.solve({}, {}, 25s).fix, FixState::Fix3D);

    const std::string epoch = receiver.epoch({}, 12s);
    EXPECT_GT(trackedCount(epoch), 20);
    EXPECT_EQ(sentence(epoch, "RMC")[1], "030012.00") << "time is still known";
    EXPECT_EQ(sentence(epoch, "RMC")[2], "V");
    EXPECT_EQ(sentence(epoch, "RMC")[3], "");
    EXPECT_EQ(sentence(epoch, "GGA")[6], "0");
    EXPECT_EQ(sentence(epoch, "GGA")[7], "00");
    ASSERT_FALSE(usedBySystem(epoch).empty());
    for (const auto& [system, numbers] : usedBySystem(epoch))
        EXPECT_TRUE(numbers.empty()) << system;
    const ReceiverStatus status = statusOf(receiver.solve({}, {}, 12s));
    EXPECT_GT(status.of(GnssSystem::Gps).tracked, 0);
    EXPECT_EQ(status.of(GnssSystem::Gps).used, 0);
    EXPECT_EQ(status.latitudeDeg, 0);
}

TEST(ReceiverInterference, SpansAreOfScenarioTimeHoweverLateTheEngineStarts)
{
    ReceiverScenario scenario = hotStart();
    scenario.jamming = {jamming(10s, 20s, {GnssSystem::Gps})};
    scenario.noFix = {{30s, 31s}};
    const Receiver receiver(scenario, 9s);
    EXPECT_GT(tracked(receiver, GnssSystem::Gps, 999ms), 0);
    EXPECT_EQ(tracked(receiver, GnssSystem::Gps, 1s), 0);
    EXPECT_EQ(tracked(receiver, GnssSystem::Gps, 10999ms), 0);
    EXPECT_GT(tracked(receiver, GnssSystem::Gps, 11s), 0);
    EXPECT_EQ(receiver.solve({}, {}, 21s).fix, FixState::None);
    EXPECT_EQ(receiver.solve({}, {}, 22s).fix, FixState::Fix3D);
}

TEST(ReceiverInterference, WhatAScenarioPlansCanBeAskedFor)
{
    ReceiverScenario scenario;
    scenario.jamming = {jamming(10s, 20s, {GnssSystem::Beidou})};
    scenario.noFix = {{15s, 16s}, {40s, 30s}};
    EXPECT_EQ(interferenceAt(scenario, 9s).blocked, BlockedSystems{});
    EXPECT_EQ(interferenceAt(scenario, 10s).blocked, (BlockedSystems{false, false, false, true, false, false}));
    EXPECT_FALSE(interferenceAt(scenario, 10s).noFix);
    EXPECT_TRUE(interferenceAt(scenario, 15s).noFix);
    EXPECT_FALSE(interferenceAt(scenario, 16s).noFix);
    EXPECT_FALSE(interferenceAt(scenario, 35s).noFix) << "nothing lies in a span that ends before it begins";
}

TEST(ReceiverInterference, SystemThatIsNotInTheSkyIsNotInViewAndChangesNoOther)
{
    ReceiverScenario scenario = hotStart();
    scenario.systems[indexOf(GnssSystem::Gps)] = false;
    scenario.systems[indexOf(GnssSystem::Qzss)] = false;
    const ReceiverStatus without = statusOf(Receiver(scenario).solve({}, {}, 5s));
    const ReceiverStatus with = statusOf(Receiver(hotStart()).solve({}, {}, 5s));
    EXPECT_EQ(without.of(GnssSystem::Gps).inView, 0);
    EXPECT_EQ(without.of(GnssSystem::Qzss).inView, 0);
    EXPECT_EQ(without.of(GnssSystem::Galileo).inView, with.of(GnssSystem::Galileo).inView);
    EXPECT_DOUBLE_EQ(without.of(GnssSystem::Galileo).meanCarrierDbHz, with.of(GnssSystem::Galileo).meanCarrierDbHz);
    EXPECT_EQ(without.fix, FixState::Fix3D);
    scenario.systems.fill(false);
    const std::string empty = Receiver(scenario).epoch({}, 5s);
    EXPECT_TRUE(inView(empty).empty());
    EXPECT_EQ(sentence(empty, "RMC")[2], "V");
}

TEST(ReceiverInterference, CarrierOffsetMovesEveryLevelWithinItsLimits)
{
    const auto levels = [](double offsetDbHz) {
        ReceiverScenario scenario = hotStart();
        scenario.carrierOffsetDbHz = offsetDbHz;
        std::vector<int> all;
        for (const InView& satellite : inView(Receiver(scenario).epoch({}, 0ms)))
            all.push_back(std::stoi(satellite.carrier));
        return all;
    };
    const std::vector<int> plain = levels(0);
    const std::vector<int> weaker = levels(-7);
    ASSERT_GT(plain.size(), 20U);
    ASSERT_EQ(weaker.size(), plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i)
        EXPECT_EQ(weaker[i], plain[i] - 7);
    EXPECT_EQ(levels(60), std::vector<int>(plain.size(), 60));
    EXPECT_EQ(levels(-60), std::vector<int>(plain.size(), 0));
}

TEST(ReceiverInterference, CarrierOffsetThatMakesNoSenseIsRefusedWithWhatIsAccepted)
{
    for (const double offsetDbHz : {-60.5, 61.0, std::nan("")}) {
        ReceiverScenario scenario;
        scenario.carrierOffsetDbHz = offsetDbHz;
        try {
            const Receiver receiver(scenario);
            ADD_FAILURE() << offsetDbHz << " is accepted";
        } catch (const std::runtime_error& error) {
            const std::string message = error.what();
            EXPECT_EQ(message.substr(0, 15), "carrier offset ") << message;
            EXPECT_NE(message.find(" dB-Hz; accepted are -60 to 60"), std::string::npos) << message;
        }
    }
}

TEST(ReceiverInterference, FeedInStepsFollowsThePlanOfTheScenario)
{
    ReceiverScenario scenario = hotStart();
    scenario.jamming = {jamming(10s, 12s, {GnssSystem::Gps})};
    scenario.noFix = {{14s, 15s}};
    Feed feed(scenario, {}, Feed::Pace::steps);
    feed.start(9s);
    std::string seen;
    while (*feed.nextEpoch() < 17s) {
        feed.step(*feed.nextEpoch());
        const ReceiverStatus status = feed.status();
        seen += status.fix == FixState::None ? 'n' : status.of(GnssSystem::Gps).tracked == 0 ? 'j' : '.';
    }
    EXPECT_EQ(seen, ".jj..n..");
}

TEST(ReceiverInterference, FixIsTakenAwayAndGivenBackByHandAndKeptOverARestart)
{
    Feed feed(hotStart(), {}, Feed::Pace::steps);
    feed.start();
    feed.step(0s);
    EXPECT_EQ(feed.status().fix, FixState::Fix3D);
    feed.setNoFix(true);
    EXPECT_EQ(feed.status().fix, FixState::Fix3D) << "until the next epoch";
    feed.step(1s);
    EXPECT_EQ(feed.status().fix, FixState::None);
    EXPECT_GT(feed.status().of(GnssSystem::Gps).tracked, 0);
    feed.stop();
    feed.start(10s);
    feed.step(10s);
    EXPECT_EQ(feed.status().fix, FixState::None);
    EXPECT_GT(feed.status().of(GnssSystem::Gps).tracked, 0);
    feed.setNoFix(false);
    feed.step(11s);
    EXPECT_EQ(feed.status().fix, FixState::Fix3D);
}

TEST(ReceiverInterference, FixIsTakenAwayByHandAtTheRealPace)
{
    ReceiverSettings fast;
    fast.period = 100ms;
    Feed feed(hotStart(), fast);
    feed.setNoFix(true);
    feed.start();
    EXPECT_TRUE(await([&] { return feed.status().of(GnssSystem::Gps).tracked > 0; }));
    EXPECT_EQ(feed.status().fix, FixState::None);
    feed.setNoFix(false);
    EXPECT_TRUE(await([&] { return feed.status().fix == FixState::Fix3D; }));
}

}  // namespace
