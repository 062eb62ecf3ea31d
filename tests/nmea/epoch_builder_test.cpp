#include "nmea/EpochBuilder.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace nmea {
namespace {

class EpochBuilderTest : public ::testing::Test
{
protected:
    /// Adds a sentence; returns the epoch that it completes.
    std::optional<Epoch> add(const std::string& body)
    {
        unsigned char sum = 0;
        for (const char c : body)
            sum = static_cast<unsigned char>(sum ^ static_cast<unsigned char>(c));
        char checksum[8];
        std::snprintf(checksum, sizeof checksum, "*%02X\r\n", sum);
        const auto sentences = m_reader.read("$" + body + checksum);
        EXPECT_EQ(sentences.size(), 1u) << body;
        return sentences.empty() ? std::nullopt : m_builder.add(sentences.front());
    }
    std::optional<Epoch> addRmc(const std::string& time)
    {
        return add("GNRMC," + time + ",A,4807.5,N,01131.0,E,10.0,90.0,290224,,,A");
    }
    std::optional<Epoch> flush() { return m_builder.flush(); }
    bool isPending() const { return m_builder.isPending(); }

    static Satellites satellites(const Epoch& epoch, System system) { return epoch.satellites[indexOf(system)]; }

private:
    NmeaReader m_reader;
    EpochBuilder m_builder;
};

TEST_F(EpochBuilderTest, AnotherTimeCompletesAnEpoch)
{
    EXPECT_FALSE(addRmc("120000.00"));
    EXPECT_FALSE(add("GNGGA,120000.00,4807.5,N,01131.0,E,1,08,0.9,545.4,M,46.9,M,,"));
    const auto epoch = addRmc("120001.00");
    ASSERT_TRUE(epoch);
    EXPECT_EQ(epoch->utcMs, 43'200'000);
    EXPECT_EQ(epoch->date->day, 29);
    EXPECT_EQ(epoch->fix, Fix::threeD);
    EXPECT_DOUBLE_EQ(*epoch->latitudeDeg, 48.125);
    EXPECT_DOUBLE_EQ(*epoch->altitudeM, 545.4);
    EXPECT_DOUBLE_EQ(*epoch->hdop, 0.9);
    EXPECT_DOUBLE_EQ(*epoch->speedKmh, 18.52);
    EXPECT_DOUBLE_EQ(*epoch->courseDeg, 90);
}

TEST_F(EpochBuilderTest, WithoutTimeARepeatedSentenceCompletesAnEpoch)
{
    EXPECT_FALSE(add("GNRMC,,V,,,,,,,,,,N"));
    EXPECT_FALSE(add("GNGGA,,,,,,0,00,99.99,,,,,,"));
    const auto epoch = add("GNRMC,,V,,,,,,,,,,N");
    ASSERT_TRUE(epoch);
    EXPECT_FALSE(epoch->utcMs);
    EXPECT_EQ(epoch->fix, Fix::none);
    EXPECT_FALSE(epoch->latitudeDeg);
}

TEST_F(EpochBuilderTest, SilenceGivesAnEpochOutOnce)
{
    EXPECT_FALSE(isPending());
    EXPECT_FALSE(flush());
    addRmc("120000.00");
    EXPECT_TRUE(isPending());
    EXPECT_TRUE(flush());
    EXPECT_FALSE(isPending());
    EXPECT_FALSE(flush());
    EXPECT_FALSE(addRmc("120001.00")) << "the one before has been given out";
    EXPECT_TRUE(isPending());
}

TEST_F(EpochBuilderTest, WhatComesLateOfAnEpochIsNotANewOne)
{
    addRmc("120000.00");
    flush();
    EXPECT_FALSE(add("GNGGA,120000.00,4807.5,N,01131.0,E,1,08,0.9,545.4,M,46.9,M,,"));
    EXPECT_FALSE(isPending());
}

TEST_F(EpochBuilderTest, SatellitesBeforeTheTimeBelongToTheNewEpoch)
{
    add("GPGSV,1,1,01,02,45,100,40,1");
    addRmc("120000.00");
    flush();
    EXPECT_FALSE(add("GPGSV,1,1,02,02,45,100,40,05,45,100,20,1"));
    EXPECT_FALSE(addRmc("120001.00"));
    const auto epoch = flush();
    ASSERT_TRUE(epoch);
    EXPECT_EQ(epoch->utcMs, 43'201'000);
    EXPECT_EQ(satellites(*epoch, System::gps).inView, 2);
    EXPECT_DOUBLE_EQ(*epoch->meanCarrierDbHz, 30);
}

TEST_F(EpochBuilderTest, GsaDecidesTheFix)
{
    addRmc("120000.00");
    add("GNGGA,120000.00,4807.5,N,01131.0,E,1,08,0.9,545.4,M,46.9,M,,");
    add("GNGSA,A,2,02,05,12,,,,,,,,,,1.5,0.9,1.2,1");
    EXPECT_EQ(flush()->fix, Fix::twoD);
    addRmc("120001.00");
    EXPECT_EQ(flush()->fix, Fix::twoD) << "RMC alone knows no height";
}

TEST_F(EpochBuilderTest, CountsUsedSatellitesBySystem)
{
    addRmc("120000.00");
    add("GNGSA,A,3,02,05,12,40,,,,,,,,,1.5,0.9,1.2,1");
    add("GNGSA,A,3,65,,,,,,,,,,,,1.5,0.9,1.2,2");
    add("GNGSA,A,3,02,05,,,,,,,,,,,1.5,0.9,1.2,4");
    const auto epoch = flush();
    EXPECT_EQ(satellites(*epoch, System::gps).used, 3);
    EXPECT_EQ(satellites(*epoch, System::sbas).used, 1);
    EXPECT_EQ(satellites(*epoch, System::glonass).used, 1);
    EXPECT_EQ(satellites(*epoch, System::beidou).used, 2);
    EXPECT_EQ(satellites(*epoch, System::galileo).used, 0);
}

TEST_F(EpochBuilderTest, CountsASatelliteOnceWhateverSignalsItHas)
{
    addRmc("120000.00");
    add("GPGSV,1,1,02,02,45,100,40,05,30,200,,1");
    add("GPGSV,1,1,02,02,45,100,44,05,30,200,,8");
    const auto epoch = flush();
    EXPECT_EQ(satellites(*epoch, System::gps).inView, 2);
    EXPECT_DOUBLE_EQ(*epoch->meanCarrierDbHz, 44) << "the best signal; satellites without one do not count";
}

TEST_F(EpochBuilderTest, TellsOfEachSatelliteWhereItIsAndHowStrong)
{
    addRmc("120000.00");
    add("GNGSA,A,3,05,,,,,,,,,,,,1.8,0.9,1.6,1");
    add("GPGSV,1,1,02,05,30,200,38,02,45,100,,1");
    add("GPGSV,1,1,01,05,30,200,41,8");
    add("GAGSV,1,1,01,11,,,22,7");
    const auto epoch = flush();
    ASSERT_EQ(epoch->inView.size(), 3u);
    const auto& idle = epoch->inView[0];
    EXPECT_EQ(idle.system, System::gps);
    EXPECT_EQ(idle.number, 2);
    EXPECT_EQ(idle.elevationDeg, 45);
    EXPECT_EQ(idle.azimuthDeg, 100);
    EXPECT_FALSE(idle.carrierDbHz) << "not tracked";
    EXPECT_FALSE(idle.isUsed);
    const auto& used = epoch->inView[1];
    EXPECT_EQ(used.number, 5);
    EXPECT_EQ(used.elevationDeg, 30);
    EXPECT_EQ(used.azimuthDeg, 200);
    EXPECT_EQ(used.carrierDbHz, 41);
    EXPECT_TRUE(used.isUsed);
    const auto& unplaced = epoch->inView[2];
    EXPECT_EQ(unplaced.system, System::galileo);
    EXPECT_FALSE(unplaced.elevationDeg || unplaced.azimuthDeg);
    EXPECT_EQ(unplaced.carrierDbHz, 22);
    addRmc("120001.00");
    EXPECT_EQ(flush()->inView.size(), 3u) << "they stay, each once";
}

TEST_F(EpochBuilderTest, SatellitesStayWhileNothingIsSaidAboutThem)
{
    addRmc("120000.00");
    add("GPGSV,1,1,01,02,45,100,40,1");
    add("GLGSV,1,1,01,65,45,100,40,1");
    flush();
    addRmc("120000.10");
    EXPECT_EQ(satellites(*flush(), System::glonass).inView, 1);
    addRmc("120000.20");
    add("GPGSV,1,1,01,02,45,100,40,1");
    EXPECT_EQ(satellites(*flush(), System::glonass).inView, 0) << "this epoch lists satellites, and none of GLONASS";
}

TEST_F(EpochBuilderTest, TheDateStaysTheRestDoesNot)
{
    addRmc("120000.00");
    add("GNRMC,120001.00,V,,,,,,,,,,N");
    const auto epoch = flush();
    EXPECT_EQ(epoch->date->year, 2024);
    EXPECT_EQ(epoch->fix, Fix::none);
    EXPECT_FALSE(epoch->speedKmh);
}

TEST_F(EpochBuilderTest, TalkersThatAlternateWithinASecondGiveOneEpoch)
{
    for (const char* time : {"120000.00", "120001.00", "120002.00"}) {
        int complete = 0;
        for (const char* talker : {"GP", "GN", "GL", "GP", "GN"}) {
            complete += add(std::string(talker) + "RMC," + time + ",A,4807.5,N,01131.0,E,10.0,90.0,290224,,,A") ? 1 : 0;
            complete +=
                add(std::string(talker) + "GGA," + time + ",4807.5,N,01131.0,E,1,08,0.9,545.4,M,46.9,M,,") ? 1 : 0;
        }
        EXPECT_EQ(complete, std::string(time) == "120000.00" ? 0 : 1) << time;
    }
}

TEST_F(EpochBuilderTest, OfSourcesThatDisagreeAboutThePlaceTheLastIsBelievedAsAWhole)
{
    add("GPRMC,120000.00,A,4807.5,N,01131.0,E,10.0,90.0,290224,,,A");
    add("GLGGA,120000.00,3500.0,S,07030.0,W,1,08,0.9,20.0,M,46.9,M,,");
    add("GNGGA,120000.00,1000.0,N,,,1,08,0.9,,M,46.9,M,,");  // half a position is none
    add("GARMC,120000.00,V,,,,,,,290224,,,N");               // and who knows nothing takes nothing away
    const auto epoch = flush();
    EXPECT_DOUBLE_EQ(*epoch->latitudeDeg, -35);
    EXPECT_DOUBLE_EQ(*epoch->longitudeDeg, -70.5);
    EXPECT_DOUBLE_EQ(*epoch->altitudeM, 20);
    EXPECT_DOUBLE_EQ(*epoch->speedKmh, 18.52);
    EXPECT_EQ(epoch->fix, Fix::threeD);
}

TEST_F(EpochBuilderTest, SourcesThatDisagreeAboutTheTimeHaveEpochsOfTheirOwn)
{
    std::vector<int> times;
    for (const char* time : {"120001.00", "120000.00", "120002.00", "120001.00"}) {
        const auto complete = addRmc(time);
        if (complete)
            times.push_back(*complete->utcMs);
        EXPECT_FALSE(add(std::string("GNGGA,") + time + ",4807.5,N,01131.0,E,1,08,0.9,545.4,M,46.9,M,,"));
    }
    EXPECT_EQ(times, (std::vector<int>{43'201'000, 43'200'000, 43'202'000}));
}

TEST_F(EpochBuilderTest, AGsaThatKnowsNoFixDoesNotUndoAnotherSentences)
{
    addRmc("120000.00");
    add("GNGSA,A,1,,,,,,,,,,,,,99.9,99.9,99.9,4");
    EXPECT_EQ(flush()->fix, Fix::twoD);
}

TEST_F(EpochBuilderTest, ReadsPositionsOfGgaGnsAndGllToo)
{
    struct Row
    {
        const char* body;
        Fix fix;
        std::optional<double> altitudeM;
    };
    const Row rows[] = {
        {"GPGGA,120000,4807.5,N,01131.0,E,2,08,0.9,545.4,M,46.9,M,,", Fix::threeD, 545.4},
        {"GPGGA,120001,4807.5,N,01131.0,E,1,08,0.9,,M,,M,,", Fix::twoD, {}},
        {"GNGNS,120002,4807.5,N,01131.0,E,NAN,13,0.9,255.7,40.0,,", Fix::threeD, 255.7},
        {"GPGLL,4807.5,N,01131.0,E,120003,A,A", Fix::twoD, {}},
    };
    int utcMs = 43'200'000;
    for (const Row& row : rows) {
        add(row.body);
        const auto epoch = flush();
        ASSERT_TRUE(epoch) << row.body;
        EXPECT_EQ(epoch->utcMs, utcMs) << row.body;
        EXPECT_EQ(epoch->fix, row.fix) << row.body;
        EXPECT_EQ(epoch->altitudeM, row.altitudeM) << row.body;
        EXPECT_EQ(epoch->latitudeDeg, 48.125) << row.body;
        utcMs += 1000;
    }
    for (const char* body :
         {"GPGGA,120010,4807.5,N,01131.0,E,0,08,0.9,545.4,M,46.9,M,,",
          "GNGNS,120011,4807.5,N,01131.0,E,NNN,13,0.9,255.7,40.0,,",
          "GNGNS,120012,4807.5,N,01131.0,E,,13,0.9,255.7,40.0,,", "GPGLL,4807.5,N,01131.0,E,120013,V,N"}) {
        add(body);
        const auto epoch = flush();
        EXPECT_EQ(epoch->fix, Fix::none) << body;
        EXPECT_FALSE(epoch->latitudeDeg || epoch->altitudeM) << body;
    }
}

TEST_F(EpochBuilderTest, TakesTheDateOfZdaWhereverItStandsAndAcrossMidnight)
{
    const auto gga = [&](const std::string& time) {
        return add("GPGGA," + time + ",4807.5,N,01131.0,E,1,08,0.9,545.4,M,46.9,M,,");
    };
    add("GPZDA,235959.00,29,02,2024,00,00");  // ahead of its epoch
    gga("235959.20");
    add("GPZDA,000000.00,01,03,2024,00,00");
    const auto before = gga("000000.20");
    ASSERT_TRUE(before);
    EXPECT_EQ(before->date->day, 29);
    const auto after = gga("000000.40");
    ASSERT_TRUE(after);
    EXPECT_EQ(after->date->day, 1);
    EXPECT_EQ(after->date->month, 3);
    gga("000001.00");
    EXPECT_EQ(flush()->date->day, 1) << "it stays";
}

TEST_F(EpochBuilderTest, ForgetsTheDateWhenMidnightPassesWithoutANewOne)
{
    const auto gga = [&](const std::string& time) {
        return add("GPGGA," + time + ",4807.5,N,01131.0,E,1,08,0.9,545.4,M,46.9,M,,");
    };
    addRmc("235958.00");
    EXPECT_TRUE(gga("235957.00")->date) << "a second back is no new day";
    EXPECT_TRUE(gga("235959.00")->date);
    EXPECT_TRUE(gga("000000.00")->date);
    EXPECT_FALSE(gga("000001.00")->date);
    EXPECT_FALSE(addRmc("000002.00")->date);
    EXPECT_EQ(flush()->date->day, 29) << "RMC tells it again";
}

TEST_F(EpochBuilderTest, ReceiversThatTellTheTimeOnlyGiveEpochs)
{
    EXPECT_FALSE(add("GPZDA,120000.00,29,02,2024,00,00"));
    const auto epoch = add("GPZDA,120001.00,29,02,2024,00,00");
    ASSERT_TRUE(epoch);
    EXPECT_EQ(epoch->utcMs, 43'200'000);
    EXPECT_EQ(epoch->date->year, 2024);
    EXPECT_EQ(epoch->fix, Fix::none);
}

TEST_F(EpochBuilderTest, AClockThatStandsStillHidesNoEpoch)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(addRmc("120000.00"));
        EXPECT_TRUE(flush()) << i;
    }
}

TEST_F(EpochBuilderTest, SatellitesAheadOfTheTimeAreCountedAnewWithoutASignalIdToo)
{
    add("GPGSV,1,1,01,02,45,100,40");
    addRmc("120000.00");
    flush();
    add("GPGSV,1,1,01,05,45,100,20");  // another C/N0, the same place in its row
    EXPECT_TRUE(isPending());
    EXPECT_FALSE(addRmc("120001.00"));
    const auto epoch = flush();
    EXPECT_EQ(satellites(*epoch, System::gps).inView, 1);
    EXPECT_EQ(epoch->inView[0].number, 5);
}

TEST_F(EpochBuilderTest, ARowOfSatellitesThatComesAgainWithinAnEpochSaysItAnew)
{
    addRmc("120000.00");
    add("GPGSV,2,1,05,01,45,100,40,02,45,100,40,03,45,100,40,04,45,100,40,1");
    add("GPGSV,2,2,05,05,45,100,40,1");
    add("GLGSV,1,1,01,65,45,100,40,1");
    add("GPGSV,1,1,02,01,45,100,30,07,,,,1");
    const auto epoch = flush();
    EXPECT_EQ(satellites(*epoch, System::gps).inView, 2);
    EXPECT_EQ(satellites(*epoch, System::glonass).inView, 1);
    EXPECT_EQ(epoch->inView[0].carrierDbHz, 30);
    EXPECT_FALSE(epoch->inView[1].carrierDbHz);
}

TEST_F(EpochBuilderTest, KeepsTheSatellitesOfUsualNumbersOnly)
{
    addRmc("120000.00");
    for (const char* number : {"0", "-5", "1000", "999999999", "x", "1e1"})
        add(std::string("GPGSV,1,1,01,") + number + ",45,100,40,1");
    add("GPGSA,A,3,1000,-1,,,,,,,,,,,1.5,0.9,1.2");
    const auto epoch = flush();
    EXPECT_TRUE(epoch->inView.empty());
    EXPECT_EQ(satellites(*epoch, System::gps).used, 0);
}

TEST_F(EpochBuilderTest, SentencesWithoutAnyFieldSayNothing)
{
    for (const char* address : {"GPGSV", "GPGSA", "GPRMC", "GPGGA", "GPGNS", "GPGLL", "GPVTG", "GPZDA"})
        EXPECT_FALSE(add(address)) << address;
    const auto epoch = flush();
    ASSERT_TRUE(epoch);
    EXPECT_TRUE(epoch->inView.empty());
    EXPECT_FALSE(epoch->latitudeDeg);
    EXPECT_EQ(epoch->fix, Fix::none);
}

TEST_F(EpochBuilderTest, TakesSpeedAndCourseFromVtg)
{
    addRmc("120000.00");
    add("GNVTG,123.4,T,,M,21.598,N,40.0,K,A");
    const auto epoch = flush();
    EXPECT_DOUBLE_EQ(*epoch->speedKmh, 40);
    EXPECT_DOUBLE_EQ(*epoch->courseDeg, 123.4);
}

}  // namespace
}  // namespace nmea
