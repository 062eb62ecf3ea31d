// Which satellites are reported and used: numbers, elevation, corrections, levels.

#include "receiver/Receiver.h"

#include "sim/receiver_support.h"

#include <gtest/gtest.h>
#include <numeric>

namespace {

using namespace arcsim;
using namespace receiver_test;
using namespace std::chrono_literals;

TEST(ReceiverSatellites, SatelliteNumbersStayInTheRangeOfTheirTalker)
{
    for (int hour = 0; hour < 24; ++hour)
        for (const InView& satellite : inView(epochWith({}, std::chrono::hours(hour)))) {
            const int highest = satellite.talker == "GP"   ? 64
                                : satellite.talker == "GL" ? 96
                                : satellite.talker == "GA" ? 36
                                : satellite.talker == "GB" ? 32
                                                           : 10;
            EXPECT_GE(satellite.number, satellite.talker == "GL" ? 65 : 1);
            EXPECT_LE(satellite.number, highest) << satellite.talker;
        }
}

TEST(ReceiverSatellites, SbasShowsAsNumbers33To64OfGpsAndAsCorrections)
{
    const auto sbasCount = [](const std::string& epoch) {
        int count = 0;
        for (const InView& satellite : inView(epoch))
            count += satellite.talker == "GP" && satellite.number >= 33 && satellite.number <= 64 ? 1 : 0;
        return count;
    };
    ReceiverSettings settings;
    const std::string with = epochWith(settings);
    EXPECT_GE(sbasCount(with), 1);
    EXPECT_EQ(sentence(with, "GGA")[6], "2");
    EXPECT_EQ(sentence(with, "RMC")[12], "D");

    settings.sbas = false;
    const std::string without = epochWith(settings);
    EXPECT_EQ(sbasCount(without), 0);
    EXPECT_EQ(sentence(without, "GGA")[6], "1");
    EXPECT_EQ(sentence(without, "RMC")[12], "A");
}

TEST(ReceiverSatellites, SbasIsNeverAmongTheSatellitesOfTheFix)
{
    const auto used = usedBySystem(epochWith({})).at("1");
    ASSERT_FALSE(used.empty());
    for (const std::string& number : used)
        EXPECT_LE(std::stoi(number), 32);
}

TEST(ReceiverSatellites, NoSatelliteBelowTheMinimumElevationIsReportedOrUsed)
{
    std::size_t previous = 1000;
    for (const int minElevationDeg : {5, 20, 45}) {
        ReceiverSettings settings;
        settings.minElevationDeg = minElevationDeg;
        const std::string epoch = epochWith(settings);
        const std::vector<InView> satellites = inView(epoch);
        ASSERT_FALSE(satellites.empty());
        for (const InView& satellite : satellites)
            EXPECT_GE(satellite.elevationDeg, minElevationDeg);
        EXPECT_LT(satellites.size(), previous) << "a higher mask sees fewer";
        EXPECT_LE(std::stoul(sentence(epoch, "GGA")[7]), satellites.size());
        previous = satellites.size();
    }
}

TEST(ReceiverSatellites, GsaNamesAtMostTwelveSatellitesOfASystem)
{
    bool moreWereTracked = false;
    for (int hour = 0; hour < 24; ++hour) {
        const std::string epoch = epochWith({}, std::chrono::hours(hour));
        int tracked = 0;
        for (const InView& satellite : inView(epoch))
            tracked += satellite.talker == "GB" && !satellite.carrier.empty() ? 1 : 0;
        moreWereTracked = moreWereTracked || tracked > 12;
        std::size_t used = 0;
        for (const Fields& gsa : sentences(epoch, "GSA"))
            EXPECT_EQ(gsa.size(), 19U);
        for (const auto& [id, numbers] : usedBySystem(epoch)) {
            EXPECT_LE(numbers.size(), 12U) << id;
            used += numbers.size();
        }
        EXPECT_EQ(std::stoul(sentence(epoch, "GGA")[7]), used);
    }
    EXPECT_TRUE(moreWereTracked) << "the limit is not exercised";
}

TEST(ReceiverSatellites, CarrierLevelsRiseWithElevation)
{
    std::vector<double> low;
    std::vector<double> high;
    for (int hour = 0; hour < 24; ++hour)
        for (const InView& satellite : inView(epochWith({}, std::chrono::hours(hour)))) {
            const double carrier = std::stod(satellite.carrier);
            EXPECT_GE(carrier, 25);
            EXPECT_LE(carrier, 50);
            if (satellite.elevationDeg < 15)
                low.push_back(carrier);
            if (satellite.elevationDeg > 60)
                high.push_back(carrier);
        }
    ASSERT_FALSE(low.empty());
    ASSERT_FALSE(high.empty());
    const auto mean = [](const std::vector<double>& all) {
        return std::accumulate(all.begin(), all.end(), 0.0) / static_cast<double>(all.size());
    };
    EXPECT_GT(mean(high), mean(low) + 8);
}

TEST(ReceiverSatellites, GeostationarySatelliteStandsStillOverItsLongitude)
{
    ReceiverScenario scenario = hotStart();
    scenario.route = {{0, 127, 0, 0}};
    ReceiverSettings settings;
    settings.format = OutputFormat::Raw;
    int seen = 0;
    for (const int hour : {0, 7, 24 * 365})
        for (const Fields& line : sentences(Receiver(scenario).epoch(settings, std::chrono::hours(hour)), "PSIM"))
            if (line[1] == "M" && line[3] == "S37") {
                ++seen;
                EXPECT_GT(std::stod(line[7]), 89.9);
                EXPECT_NEAR(std::stod(line[5]), 0, 0.01);
            }
    EXPECT_EQ(seen, 3);
}

}  // namespace
