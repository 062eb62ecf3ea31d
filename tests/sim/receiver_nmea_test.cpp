// Sentence parts, geodesy and geometry against values worked out by hand.

#include "receiver/Dop.h"
#include "receiver/Geodesy.h"
#include "receiver/Nmea.h"

#include <gtest/gtest.h>

namespace {

using namespace arcsim;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::system_clock;

TEST(Nmea, ChecksumIsThatOfPublishedSentences)
{
    EXPECT_EQ(nmea::checksum("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"), "47");
    EXPECT_EQ(nmea::checksum("GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W"), "6A");
    EXPECT_EQ(nmea::checksum("A"), "41");
    EXPECT_EQ(nmea::checksum("AA"), "00");
}

TEST(Nmea, SentenceIsFramedWithDollarStarAndLineEnd)
{
    EXPECT_EQ(nmea::sentence("GNVTG,N"), "$GNVTG,N*2E\r\n");
}

TEST(Nmea, NumbersAreRoundedAndFilledUp)
{
    EXPECT_EQ(nmea::number(1.26, 1), "1.3");
    EXPECT_EQ(nmea::number(-89.84, 1), "-89.8");
    EXPECT_EQ(nmea::number(7, 0, 3), "007");
    EXPECT_EQ(nmea::number(-0.04, 1), "0.0");
}

TEST(Nmea, AnglesHaveFiveDecimalsOfMinutesAndAHemisphere)
{
    EXPECT_EQ(nmea::latitude(48.1173), "4807.03800,N");
    EXPECT_EQ(nmea::latitude(-33.5), "3330.00000,S");
    EXPECT_EQ(nmea::longitude(11.516666666667), "01131.00000,E");
    EXPECT_EQ(nmea::longitude(-0.25), "00015.00000,W");
}

TEST(Nmea, MinutesNeverReachSixty)
{
    EXPECT_EQ(nmea::latitude(47.99999999999), "4800.00000,N");
}

TEST(Nmea, LongitudeBeyondTheDateLineComesBackFromTheOtherSide)
{
    EXPECT_EQ(nmea::longitude(180.25), "17945.00000,W");
}

TEST(Nmea, TimeAndDateAreThoseOfUtc)
{
    const system_clock::time_point moment(hours(24 * 19886) + milliseconds(3 * 3600000 + 4 * 60000 + 5250));
    EXPECT_EQ(nmea::time(moment), "030405.25");
    EXPECT_EQ(nmea::date(moment), "120624");
}

TEST(Geodesy, EquatorAndPoleLieOnTheAxesOfTheEllipsoid)
{
    EXPECT_NEAR(toEcef({0, 0, 0}).x, 6378137.0, 1e-3);
    EXPECT_NEAR(toEcef({0, 90, 10}).y, 6378147.0, 1e-3);
    EXPECT_NEAR(toEcef({90, 0, 0}).z, 6356752.3142, 1e-3);
}

TEST(Geodesy, LookAnglesPointUpEastAndNorth)
{
    EXPECT_NEAR(lookAngle({0, 0, 0}, {7000000, 0, 0}).elevationDeg, 90, 1e-6);
    EXPECT_NEAR(lookAngle({0, 0, 0}, {7000000, 0, 0}).rangeM, 621863, 1e-3);
    EXPECT_NEAR(lookAngle({0, 0, 0}, {6378137, 1000, 0}).azimuthDeg, 90, 1e-6);
    EXPECT_NEAR(lookAngle({0, 0, 0}, {6378137, 1000, 0}).elevationDeg, 0, 1e-6);
    EXPECT_NEAR(lookAngle({0, 0, 0}, {6378137, -1000, 1000}).azimuthDeg, 315, 1e-6);
}

TEST(Geodesy, ADegreeIsAsLongAsOnTheEllipsoid)
{
    EXPECT_NEAR(northMetresPerDeg(0), 110574.3, 0.1);
    EXPECT_NEAR(northMetresPerDeg(45), 111131.8, 0.1);
    EXPECT_NEAR(eastMetresPerDeg(0), 111319.5, 0.1);
    EXPECT_NEAR(eastMetresPerDeg(60), 55800.0, 0.1);
}

TEST(Dop, OneAboveAndThreeAroundGiveTheTextbookValues)
{
    const Dop dop = dopOf({{90, 0, 1}, {0, 0, 1}, {0, 120, 1}, {0, 240, 1}});
    EXPECT_NEAR(dop.horizontal, 1.154701, 1e-6);  // the root of 4/3
    EXPECT_NEAR(dop.vertical, 1.154701, 1e-6);
    EXPECT_NEAR(dop.position, 1.632993, 1e-6);  // the root of 8/3
}

TEST(Dop, ThreeAroundAtKnownHeightGiveTheHorizontalValueOnly)
{
    const Dop dop = dopAtKnownHeight({{0, 0, 1}, {0, 120, 1}, {0, 240, 1}});
    EXPECT_NEAR(dop.horizontal, 1.154701, 1e-6);
    EXPECT_EQ(dop.vertical, 99.99);
    EXPECT_EQ(dop.position, 99.99);
}

TEST(Dop, GeometryWithoutSolutionIsTheLargestValue)
{
    EXPECT_EQ(dopOf({{90, 0, 1}, {30, 10, 1}, {40, 200, 1}}).position, 99.99);
    EXPECT_EQ(dopOf({{30, 0, 1}, {30, 90, 1}, {30, 180, 1}, {30, 270, 1}}).position, 99.99);
    EXPECT_EQ(dopOf({}).horizontal, 99.99);
    EXPECT_EQ(dopAtKnownHeight({{20, 0, 1}, {20, 0, 1}, {20, 0, 1}}).horizontal, 99.99);
}

}  // namespace
