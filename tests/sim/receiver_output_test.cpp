// The bytes of an epoch: addresses, fields, paging, what settings switch on and off.

#include "receiver/Receiver.h"

#include "sim/receiver_support.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace arcsim;
using namespace receiver_test;
using namespace std::chrono_literals;

ReceiverSettings onlyGps()
{
    ReceiverSettings settings;
    settings.glonass = settings.galileo = settings.beidou = settings.qzss = settings.sbas = false;
    return settings;
}

TEST(ReceiverOutput, EveryLineOfADayIsAValidSentenceOfAtMost82Characters)
{
    const Receiver receiver(ReceiverScenario{});
    for (int minute = 0; minute < 24 * 60; minute += 10) {
        const std::vector<Line> lines = linesOf(receiver.epoch({}, std::chrono::minutes(minute)));
        ASSERT_GT(lines.size(), 10U);
        for (const Line& line : lines) {
            ASSERT_TRUE(line.valid) << line.text;
            ASSERT_LE(line.text.size(), 82U) << line.text;
        }
    }
}

TEST(ReceiverOutput, EpochIsRmcVtgGgaThenGsaThenGsv)
{
    std::string order;
    for (const Line& line : linesOf(epochWith({}))) {
        const std::string formatter = line.fields[0].substr(2);
        if (order.size() < 3 || order.substr(order.size() - 3) != formatter)
            order += formatter;
    }
    EXPECT_EQ(order, "RMCVTGGGAGSAGSV");
}

TEST(ReceiverOutput, TalkerIsGnAsSoonAsASecondSystemIsOn)
{
    for (bool ReceiverSettings::*system :
         {&ReceiverSettings::glonass, &ReceiverSettings::galileo, &ReceiverSettings::beidou, &ReceiverSettings::qzss}) {
        ReceiverSettings settings = onlyGps();
        settings.*system = true;
        const std::string epoch = epochWith(settings);
        EXPECT_EQ(sentence(epoch, "RMC")[0], "GNRMC");
        EXPECT_EQ(sentence(epoch, "GGA")[0], "GNGGA");
        EXPECT_EQ(sentence(epoch, "VTG")[0], "GNVTG");
        EXPECT_EQ(sentences(epoch, "GNGSA").size(), 2U);
    }
}

TEST(ReceiverOutput, TalkerIsGpWithGpsAlone)
{
    ReceiverSettings settings = onlyGps();
    settings.sbas = true;  // not a positioning system of its own
    const std::string epoch = epochWith(settings);
    EXPECT_EQ(sentence(epoch, "RMC")[0], "GPRMC");
    EXPECT_EQ(sentence(epoch, "GSA")[0], "GPGSA");
    EXPECT_EQ(gsvTalkers(epoch), std::set<std::string>{"GP"});
}

TEST(ReceiverOutput, EverySystemThatIsOnHasItsGsvTalkerAndItsGsaSystemId)
{
    const std::string all = epochWith({});
    EXPECT_EQ(gsvTalkers(all), (std::set<std::string>{"GP", "GL", "GA", "GB", "GQ"}));
    const auto used = usedBySystem(all);
    ASSERT_EQ(used.size(), 5U);
    for (const char* id : {"1", "2", "3", "4", "5"})
        EXPECT_FALSE(used.at(id).empty()) << "system id " << id;
}

struct Switch
{
    bool ReceiverSettings::*setting;
    const char* talker;
    const char* systemId;
};
class SystemSwitch : public testing::TestWithParam<Switch>
{
};

TEST_P(SystemSwitch, OffRemovesTheSystemFromGsvAndGsa)
{
    ReceiverSettings settings;
    settings.*GetParam().setting = false;
    const std::string epoch = epochWith(settings);
    EXPECT_EQ(gsvTalkers(epoch).count(GetParam().talker), 0U);
    EXPECT_EQ(gsvTalkers(epoch).size(), 4U);
    EXPECT_EQ(usedBySystem(epoch).count(GetParam().systemId), 0U);
    EXPECT_EQ(usedBySystem(epoch).size(), 4U);
}

INSTANTIATE_TEST_SUITE_P(ReceiverOutput, SystemSwitch,
                         testing::Values(Switch{&ReceiverSettings::glonass, "GL", "2"},
                                         Switch{&ReceiverSettings::galileo, "GA", "3"},
                                         Switch{&ReceiverSettings::beidou, "GB", "4"},
                                         Switch{&ReceiverSettings::qzss, "GQ", "5"}));

TEST(ReceiverOutput, GsvPagesHoldFourSatellitesAndCountThemselves)
{
    std::map<std::string, std::vector<Fields>> pages;
    for (const Fields& gsv : sentences(epochWith({}), "GSV"))
        pages[gsv[0]].push_back(gsv);
    ASSERT_GE(pages["GPGSV"].size(), 2U) << "paging is not exercised";
    for (const auto& [address, own] : pages) {
        const std::size_t total = std::stoul(own[0][3]);
        EXPECT_EQ(own.size(), (total + 3) / 4) << address;
        for (std::size_t i = 0; i < own.size(); ++i) {
            EXPECT_EQ(own[i][1], std::to_string(own.size())) << address;
            EXPECT_EQ(own[i][2], std::to_string(i + 1)) << address;
            EXPECT_EQ(own[i][3], own[0][3]) << address;
            const std::size_t here = i + 1 < own.size() ? 4 : total - 4 * i;
            EXPECT_EQ(own[i].size(), 4 + 4 * here + 1) << address;  // the last field is the signal id
        }
    }
}

TEST(ReceiverOutput, GsvEndWithTheSignalTheyReport)
{
    const std::map<std::string, std::string> expected{
        {"GPGSV", "1"}, {"GLGSV", "1"}, {"GAGSV", "7"}, {"GBGSV", "1"}, {"GQGSV", "1"}};
    std::map<std::string, std::string> found;
    for (const Fields& gsv : sentences(epochWith({}), "GSV")) {
        EXPECT_EQ(gsv.back(), expected.at(gsv[0]));
        found[gsv[0]] = gsv.back();
    }
    EXPECT_EQ(found, expected) << "every system has some";
}

TEST(ReceiverOutput, GsvOfQzssComeFirstSoThatGpsdSeesTheEpochEndWithAnother)
{
    ReceiverScenario scenario;
    scenario.route = {Waypoint{48, 11}};  // none of QZSS rises there
    const std::string epoch = Receiver(scenario).epoch(ReceiverSettings{}, std::chrono::minutes(5));
    std::string order;
    for (std::size_t at = epoch.find("GSV,"); at != std::string::npos; at = epoch.find("GSV,", at + 1))
        if (const std::string talker = epoch.substr(at - 2, 2);
            order.size() < 2 || order.substr(order.size() - 2) != talker)
            order += talker;
    EXPECT_EQ(order, "GQGPGLGAGB");
    EXPECT_NE(epoch.find("$GQGSV,1,1,00,1*65\r\n"), std::string::npos) << epoch;
}

TEST(ReceiverOutput, ASystemWithNothingInViewSaysSoInOneGsv)
{
    ReceiverScenario scenario;
    scenario.route = {Waypoint{89, 0}};
    ReceiverSettings settings;
    settings.minElevationDeg = 45;
    settings.sbas = false;
    const std::string epoch = Receiver(scenario).epoch(settings, std::chrono::minutes(5));
    EXPECT_NE(epoch.find("$GPGSV,1,1,00,1*64\r\n"), std::string::npos) << epoch;
    EXPECT_EQ(sentences(epoch, "GPGSV").size(), 1U);
}

TEST(ReceiverOutput, DopValuesFitTogetherAndAreTheSameInAllSentences)
{
    const std::string epoch = epochWith({});
    const double hdop = std::stod(sentence(epoch, "GGA")[8]);
    ASSERT_FALSE(sentences(epoch, "GSA").empty());
    for (const Fields& gsa : sentences(epoch, "GSA")) {
        EXPECT_DOUBLE_EQ(std::stod(gsa[16]), hdop);
        EXPECT_NEAR(std::stod(gsa[15]), std::hypot(hdop, std::stod(gsa[17])), 0.02);
    }
    EXPECT_GT(hdop, 0.2);
    EXPECT_LT(hdop, 2.0);
    EXPECT_GT(std::stod(sentence(epochWith(onlyGps()), "GGA")[8]), hdop) << "fewer satellites, worse geometry";
}

TEST(ReceiverOutput, UtcOfEpochsFollowsThePeriod)
{
    const std::map<int, std::vector<std::string>> expected{
        {1000, {"030000.00", "030001.00", "030002.00"}},
        {500, {"030000.00", "030000.50", "030001.00"}},
        {200, {"030000.00", "030000.20", "030000.40"}},
        {100, {"030000.00", "030000.10", "030000.20"}},
    };
    for (const auto& [periodMs, times] : expected) {
        Receiver receiver(hotStart());
        ReceiverSettings settings;
        settings.period = std::chrono::milliseconds(periodMs);
        std::chrono::milliseconds last(-1);
        for (const std::string& time : times) {
            last = receiver.next(settings, last).value();
            EXPECT_EQ(sentence(receiver.epoch(settings, last), "RMC")[1], time);
            EXPECT_EQ(sentence(receiver.epoch(settings, last), "GGA")[1], time);
        }
    }
}

TEST(ReceiverOutput, EpochsLieOnWholePeriodsOfUtcWheneverTheEngineStarts)
{
    Receiver receiver(hotStart(), 130ms);
    ReceiverSettings settings;
    settings.period = 200ms;
    EXPECT_EQ(receiver.next(settings, -1ms), 70ms);
    EXPECT_EQ(receiver.next(settings, 70ms), 270ms);
    EXPECT_EQ(sentence(receiver.epoch(settings, 70ms), "RMC")[1], "030000.20");
}

TEST(ReceiverOutput, DateChangesAtMidnight)
{
    ReceiverScenario scenario = hotStart();
    scenario.startUtc = std::chrono::system_clock::time_point(24h * 19783 - 500ms);  // before 2024-03-01
    const Receiver receiver(scenario);
    const Fields before = sentence(receiver.epoch({}, 0ms), "RMC");
    const Fields after = sentence(receiver.epoch({}, 500ms), "RMC");
    EXPECT_EQ(before[1] + ' ' + before[9], "235959.50 290224");
    EXPECT_EQ(after[1] + ' ' + after[9], "000000.00 010324");
}

TEST(ReceiverOutput, RawFormatHasOneMeasurementForEachTrackedSatellite)
{
    ReceiverSettings settings;
    const int tracked = trackedCount(epochWith(settings));
    settings.format = OutputFormat::Raw;
    const std::vector<Line> lines = linesOf(epochWith(settings));
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(tracked) + 1);
    EXPECT_EQ(lines[0].fields, (Fields{"PSIM", "T", "120624", "030000.00", std::to_string(tracked)}));
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const Fields& fields = lines[i].fields;
        ASSERT_TRUE(lines[i].valid) << lines[i].text;
        ASSERT_EQ(fields.size(), 10U);
        EXPECT_EQ(fields[2], std::to_string(i));
        EXPECT_NE(std::string("GRECJS").find(fields[3][0]), std::string::npos);
        EXPECT_GT(std::stod(fields[4]), 19.0e6);  // no satellite is nearer than 19,000 km
        EXPECT_LT(std::stod(fields[4]), 43.0e6);  // nor farther than a geostationary one at the horizon
        EXPECT_LT(std::abs(std::stod(fields[5])), 5500);
    }
}

TEST(ReceiverOutput, SettingsThatNoReceiverHasAreRefused)
{
    ReceiverSettings settings;
    EXPECT_NO_THROW(requireAccepted(settings));
    settings.period = 300ms;
    EXPECT_THROW(requireAccepted(settings), std::invalid_argument);
    settings = {};
    settings.minElevationDeg = 4;
    EXPECT_THROW(requireAccepted(settings), std::invalid_argument);
    settings.minElevationDeg = 46;
    EXPECT_THROW(requireAccepted(settings), std::invalid_argument);
}

}  // namespace
