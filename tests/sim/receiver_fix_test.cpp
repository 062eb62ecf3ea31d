// How a fix comes about and what it says: cold start, jamming, route, seeds.

#include "receiver/Receiver.h"

#include "sim/receiver_support.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace arcsim;
using namespace receiver_test;
using namespace std::chrono_literals;

// The error of a simulated position is at most 1.05 m an axis, 2.1 m in height.
constexpr double kErrorM = 1.1;

ReceiverScenario coldStart(std::chrono::milliseconds timeToFirstFix)
{
    ReceiverScenario scenario;
    scenario.timeToFirstFix = timeToFirstFix;
    return scenario;
}

std::string gsaMode(const std::string& epoch)
{
    std::set<std::string> modes;
    for (const Fields& gsa : sentences(epoch, "GSA"))
        modes.insert(gsa[2]);
    return modes.size() == 1 ? *modes.begin() : "mixed";
}

TEST(ReceiverFix, ColdReceiverKnowsNeitherPlaceNorTime)
{
    const std::string epoch = Receiver(coldStart(20s)).epoch({}, 0ms);
    EXPECT_EQ(sentence(epoch, "RMC"), (Fields{"GNRMC", "", "V", "", "", "", "", "", "", "", "", "", "N", "V"}));
    EXPECT_EQ(sentence(epoch, "GGA"),
              (Fields{"GNGGA", "", "", "", "", "", "0", "00", "99.99", "", "", "", "", "", ""}));
    EXPECT_EQ(sentence(epoch, "VTG"), (Fields{"GNVTG", "", "T", "", "M", "", "N", "", "K", "N"}));
    EXPECT_EQ(gsaMode(epoch), "1");
    EXPECT_EQ(trackedCount(epoch), 0);
}

TEST(ReceiverFix, SatellitesAreAcquiredOneAfterTheOtherBeforeTheFirstFix)
{
    const Receiver receiver(coldStart(20s));
    int previous = 0;
    std::set<int> counts;
    for (int second = 0; second < 20; ++second) {
        const std::string epoch = receiver.epoch({}, std::chrono::seconds(second));
        EXPECT_EQ(sentence(epoch, "RMC")[2], "V") << second << " s";
        EXPECT_EQ(sentence(epoch, "RMC")[3], "") << second << " s";
        EXPECT_EQ(sentence(epoch, "GGA")[6], "0") << second << " s";
        EXPECT_EQ(gsaMode(epoch), "1") << second << " s";
        EXPECT_GE(trackedCount(epoch), previous) << second << " s";
        previous = trackedCount(epoch);
        counts.insert(previous);
    }
    EXPECT_GE(counts.size(), 6U) << "acquisition comes in steps";
}

TEST(ReceiverFix, TimeIsKnownFromTheFirstTrackedSatelliteOn)
{
    const Receiver receiver(coldStart(20s));
    bool before = false;
    bool after = false;
    for (int second = 0; second < 20; ++second) {
        const std::string epoch = receiver.epoch({}, std::chrono::seconds(second));
        const bool tracking = trackedCount(epoch) > 0;
        (tracking ? after : before) = true;
        EXPECT_EQ(!sentence(epoch, "RMC")[1].empty(), tracking);
        EXPECT_EQ(!sentence(epoch, "RMC")[9].empty(), tracking);
        EXPECT_EQ(!sentence(epoch, "GGA")[1].empty(), tracking);
    }
    EXPECT_TRUE(before && after);
}

TEST(ReceiverFix, FirstFixIsTwoDimensionalThenThreeDimensional)
{
    const Receiver receiver(coldStart(20s));
    EXPECT_EQ(gsaMode(receiver.epoch({}, 19s)), "1");
    const std::string flat = receiver.epoch({}, 20s);
    EXPECT_EQ(gsaMode(flat), "2");
    EXPECT_EQ(sentence(flat, "RMC")[2], "A");
    EXPECT_EQ(sentence(flat, "GGA")[7], "03");
    EXPECT_EQ(gsaMode(receiver.epoch({}, 21s)), "2");
    EXPECT_EQ(gsaMode(receiver.epoch({}, 22s)), "3");
}

TEST(ReceiverFix, HotStartHasAThreeDimensionalFixInItsFirstEpoch)
{
    EXPECT_EQ(gsaMode(Receiver(coldStart(0ms)).epoch({}, 0ms)), "3");
}

TEST(ReceiverFix, SameSeedGivesTheSameBytesInWhateverOrder)
{
    const Receiver one(coldStart(8s));
    const Receiver other(coldStart(8s));
    std::string forward;
    for (int second = 0; second < 30; ++second)
        forward += one.epoch({}, std::chrono::seconds(second));
    std::string backward;
    for (int second = 29; second >= 0; --second)
        backward.insert(0, other.epoch({}, std::chrono::seconds(second)));
    EXPECT_EQ(forward, backward);
}

TEST(ReceiverFix, AnotherSeedGivesAnotherSky)
{
    ReceiverScenario scenario = coldStart(0ms);
    scenario.seed = 2;
    const std::string one = Receiver(coldStart(0ms)).epoch({}, 0ms);
    const std::string other = Receiver(scenario).epoch({}, 0ms);
    EXPECT_NE(usedBySystem(one), usedBySystem(other));
    EXPECT_NE(sentence(one, "GGA")[2], sentence(other, "GGA")[2]) << "the position error depends on the seed";
}

TEST(ReceiverFix, ThirtySeedsAllGetAFixInTime)
{
    for (std::uint32_t seed = 0; seed < 30; ++seed) {
        ReceiverScenario scenario = coldStart(10s);
        scenario.seed = seed;
        EXPECT_EQ(gsaMode(Receiver(scenario).epoch({}, 11s)), "3") << "seed " << seed;
    }
}

TEST(ReceiverFix, PositionSpeedAndCourseFollowTheRoute)
{
    ReceiverScenario scenario = coldStart(0ms);
    // 0.01 degrees of latitude are 1112.3 m at 50 degrees north, 0.01 degrees of longitude 716.8 m.
    scenario.route = {{50.00, 8.00, 100, 20}, {50.01, 8.00, 200, 10}, {50.01, 8.01, 200, 0}};
    const Receiver receiver(scenario);

    const std::string north = receiver.epoch({}, 10s);  // 200 m along the first leg
    EXPECT_NEAR(degrees(sentence(north, "RMC")[3], sentence(north, "RMC")[4]), 50.0017981, kErrorM / 111229);
    EXPECT_NEAR(degrees(sentence(north, "RMC")[5], sentence(north, "RMC")[6]), 8.0, kErrorM / 71696);
    EXPECT_NEAR(std::stod(sentence(north, "GGA")[9]), 117.98, 2 * kErrorM);
    EXPECT_EQ(sentence(north, "RMC")[7], "38.877");  // 20 m/s in knots
    EXPECT_EQ(sentence(north, "RMC")[8], "0.0");
    EXPECT_EQ(sentence(north, "VTG")[7], "72.000");

    const std::string east = receiver.epoch({}, 56s + 10s);  // 55.6 s for the first leg, 103.9 m along the second
    EXPECT_NEAR(degrees(sentence(east, "GGA")[2], sentence(east, "GGA")[3]), 50.01, kErrorM / 111229);
    EXPECT_NEAR(degrees(sentence(east, "GGA")[4], sentence(east, "GGA")[5]), 8.001449, 3 / 71680.0);
    EXPECT_EQ(sentence(east, "RMC")[7], "19.438");
    EXPECT_EQ(sentence(east, "RMC")[8], "90.0");

    const std::string end = receiver.epoch({}, 10min);
    EXPECT_NEAR(degrees(sentence(end, "RMC")[5], sentence(end, "RMC")[6]), 8.01, kErrorM / 71680);
    EXPECT_EQ(sentence(end, "RMC")[7], "0.000");
    EXPECT_EQ(sentence(end, "RMC")[8], "") << "a standing vehicle has no course";
}

TEST(ReceiverFix, VehicleStandsAtAWaypointForItsWaitAndThenGoesOn)
{
    // Legs of 111.23 m at 50 degrees north, so 11.123 s each.
    const Route route(
        {{50.000, 8, 100, 10, 20s}, {50.001, 8, 100, 10}, {50.002, 8, 300, 10, 5s}, {50.003, 8, 0, 0, 1h}});
    const auto latitude = [&](std::chrono::milliseconds at) { return route.at(at).latitudeDeg; };
    const auto isStanding = [&](std::chrono::milliseconds at) {
        const Motion motion = route.at(at);
        return motion.speedMps == 0 && motion.courseDeg == 0;
    };
    EXPECT_TRUE(isStanding(0ms)) << "the first waypoint has a wait as well";
    EXPECT_TRUE(isStanding(19999ms));
    EXPECT_DOUBLE_EQ(latitude(19999ms), 50);
    EXPECT_FALSE(isStanding(20000ms));
    EXPECT_EQ(route.at(20000ms).speedMps, 10);
    EXPECT_NEAR(latitude(25561ms), 50.0005, 1e-6);
    EXPECT_FALSE(isStanding(31124ms)) << "no wait at the second";
    EXPECT_FALSE(isStanding(42240ms));
    EXPECT_TRUE(isStanding(42250ms));
    EXPECT_TRUE(isStanding(47240ms));
    EXPECT_DOUBLE_EQ(latitude(47240ms), 50.002);
    EXPECT_DOUBLE_EQ(route.at(47240ms).altitudeM, 300);
    EXPECT_FALSE(isStanding(47250ms));
    EXPECT_NEAR(latitude(52808ms), 50.0025, 1e-6);
    EXPECT_NEAR(route.duration().count(), 3 * 11.123 + 25, 0.01) << "the wait at the last has no meaning";
    EXPECT_TRUE(isStanding(58400ms));
    EXPECT_DOUBLE_EQ(latitude(58400ms), 50.003);
}

TEST(ReceiverFix, WaitingVehicleHasSpeedZeroAndNoCourseInTheSentences)
{
    ReceiverScenario scenario = coldStart(0ms);
    scenario.route = {{50.00, 8.00, 100, 20, 10s}, {50.01, 8.00, 100, 0}};
    const Receiver receiver(scenario, 5s);
    EXPECT_EQ(sentence(receiver.epoch({}, 4s), "RMC")[7], "0.000");
    EXPECT_EQ(sentence(receiver.epoch({}, 4s), "RMC")[8], "");
    EXPECT_EQ(sentence(receiver.epoch({}, 5s), "RMC")[7], "38.877");
    EXPECT_EQ(sentence(receiver.epoch({}, 5s), "RMC")[8], "0.0");
}

TEST(ReceiverFix, RouteGoesOnWhileTheEngineIsOff)
{
    ReceiverScenario scenario = coldStart(0ms);
    scenario.route = {{50.00, 8.00, 100, 20}, {50.01, 8.00, 100, 0}};
    const std::string epoch = Receiver(scenario, 10s).epoch({}, 0ms);
    EXPECT_NEAR(degrees(sentence(epoch, "RMC")[3], "N"), 50.0017981, kErrorM / 111229);
    EXPECT_EQ(sentence(epoch, "RMC")[1], "030010.00");
}

TEST(ReceiverFix, SouthernAndWesternPlacesHaveTheirHemispheres)
{
    ReceiverScenario scenario = coldStart(0ms);
    scenario.route = {{-33.45, -70.65, 550, 0}};
    const Fields rmc = sentence(Receiver(scenario).epoch({}, 0ms), "RMC");
    EXPECT_EQ(rmc[4] + rmc[6], "SW");
    EXPECT_NEAR(degrees(rmc[3], rmc[4]), -33.45, 2e-5);
    EXPECT_NEAR(degrees(rmc[5], rmc[6]), -70.65, 2e-5);
}

TEST(ReceiverFix, RouteCrossesTheDateLineTheShortWay)
{
    const Route route({{0, 179.99, 0, 10}, {0, -179.99, 0, 0}});
    EXPECT_NEAR(route.duration().count(), 222.6, 0.1);  // 0.02 degrees are 2226 m on the equator
    EXPECT_NEAR(route.at(167s).longitudeDeg, -179.995, 1e-4);
    EXPECT_NEAR(route.at(167s).courseDeg, 90, 1e-6);
}

TEST(ReceiverFix, BlockedSystemIsInViewButNotTracked)
{
    BlockedSystems blocked{};
    blocked[indexOf(GnssSystem::Galileo)] = true;
    const std::string epoch = Receiver(coldStart(0ms)).epoch({}, 0ms, blocked);
    int inViewCount = 0;
    for (const InView& satellite : inView(epoch))
        if (satellite.talker == "GA") {
            ++inViewCount;
            EXPECT_EQ(satellite.carrier, "");
        }
    EXPECT_GT(inViewCount, 0);
    EXPECT_TRUE(usedBySystem(epoch).at("3").empty());
    EXPECT_EQ(gsaMode(epoch), "3");
}

TEST(ReceiverFix, BlockingEverythingLosesTheFix)
{
    BlockedSystems blocked{};
    blocked.fill(true);
    const std::string epoch = Receiver(coldStart(0ms)).epoch({}, 0ms, blocked);
    EXPECT_EQ(sentence(epoch, "RMC")[2], "V");
    EXPECT_EQ(sentence(epoch, "GGA")[6], "0");
    EXPECT_EQ(gsaMode(epoch), "1");
}

TEST(ReceiverFix, StatusTellsWhatTheSentencesTell)
{
    const Receiver receiver(coldStart(0ms));
    const ReceiverStatus status = statusOf(receiver.solve({}, {}, 5s));
    const std::string epoch = receiver.epoch({}, 5s);
    EXPECT_EQ(status.fix, FixState::Fix3D);
    EXPECT_EQ(status.utc, defaultStartUtc() + 5s);
    EXPECT_NEAR(status.latitudeDeg, degrees(sentence(epoch, "GGA")[2], "N"), 1e-6);
    EXPECT_NEAR(status.longitudeDeg, degrees(sentence(epoch, "GGA")[4], "E"), 1e-6);
    EXPECT_NEAR(status.altitudeM, std::stod(sentence(epoch, "GGA")[9]), 0.06);
    EXPECT_DOUBLE_EQ(status.speedMps, 8);

    double sum = 0;
    int count = 0;
    for (const InView& satellite : inView(epoch))
        if (satellite.talker == "GL") {
            sum += std::stod(satellite.carrier);
            ++count;
        }
    EXPECT_EQ(status.of(GnssSystem::Glonass).inView, count);
    EXPECT_EQ(status.of(GnssSystem::Glonass).tracked, count);
    EXPECT_EQ(status.of(GnssSystem::Glonass).used, static_cast<int>(usedBySystem(epoch).at("2").size()));
    EXPECT_NEAR(status.of(GnssSystem::Glonass).meanCarrierDbHz, sum / count, 1e-9);
    EXPECT_GT(status.of(GnssSystem::Sbas).tracked, 0);
    EXPECT_EQ(status.of(GnssSystem::Sbas).used, 0);
}

std::string complaintOf(const std::vector<Waypoint>& waypoints)
{
    try {
        const Route route(waypoints);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "accepted";
}

TEST(ReceiverFix, RoutesThatCannotBeDrivenAreRefusedWithTheReason)
{
    EXPECT_EQ(complaintOf({}), "route: no waypoint; at least one is needed");
    EXPECT_EQ(complaintOf({{10, 10, 0, 5}, {95, 10, 0, 5}}),
              "route: waypoint 2 has the latitude 95; accepted are -89 to 89");
    EXPECT_EQ(complaintOf({{10, 200, 0, 5}}), "route: waypoint 1 has the longitude 200; accepted are -180 to 180");
    EXPECT_EQ(complaintOf({{10, 10, 0, 0}, {10, 11, 0, 0}}),
              "route: waypoint 1 has the speed in m/s 0; accepted are 0.01 to 300");
    EXPECT_EQ(complaintOf({{std::nan(""), 10, 0, 0}}),
              "route: waypoint 1 has the latitude nan; accepted are -89 to 89");
    EXPECT_EQ(complaintOf({{10, 10, 0, 5, -1ms}, {10, 11, 0, 0}}),
              "route: waypoint 1 has the wait in s -0.001; accepted are 0 to 86400");
    EXPECT_EQ(complaintOf({{10, 10, 0, 5, 24h + 1ms}, {10, 11, 0, 0}}),
              "route: waypoint 1 has the wait in s 86400.001; accepted are 0 to 86400");
    EXPECT_EQ(complaintOf({{10, 10, 0, 5, 24h}, {10, 11, 0, 0, -1ms}}), "accepted");
    EXPECT_EQ(complaintOf({{10, 10, 0, 0}}), "accepted");
}

TEST(ReceiverFix, NegativeTimeToFirstFixIsRefused)
{
    EXPECT_THROW(Receiver(coldStart(-1ms)), std::runtime_error);
}

}  // namespace
