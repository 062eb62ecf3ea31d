#include "navigator/Trip.h"

#include <gtest/gtest.h>

namespace navigator {
namespace {

using nmea::Epoch;
using nmea::Fix;
using std::chrono::seconds;

Epoch at(double latitudeDeg, double longitudeDeg)
{
    Epoch epoch;
    epoch.fix = Fix::threeD;
    epoch.latitudeDeg = latitudeDeg;
    epoch.longitudeDeg = longitudeDeg;
    return epoch;
}

TEST(Trip, RemembersTheFirstFix)
{
    Trip trip;
    trip.add(Epoch{}, seconds(1));
    EXPECT_FALSE(trip.firstFix());
    trip.add(at(1, 2), seconds(7));
    trip.add(at(1, 2), seconds(8));
    ASSERT_TRUE(trip.firstFix());
    EXPECT_EQ(trip.firstFix()->sinceStart, seconds(7));
    EXPECT_EQ(trip.epochs(), 3u);
    EXPECT_EQ(trip.epochsWith3D(), 2u);
}

TEST(Trip, MeasuresDistanceOnTheSphere)
{
    Trip meridian;
    meridian.add(at(0, 0), seconds(0));
    meridian.add(at(1, 0), seconds(1));
    EXPECT_NEAR(meridian.distanceM(), 111'195, 1) << "a 360th of the circumference";
    Trip parallel;
    parallel.add(at(60, 179.5), seconds(0));
    parallel.add(at(60, -179.5), seconds(1));
    EXPECT_NEAR(parallel.distanceM(), 55'597, 5) << "half of it at 60 degrees, across the date line";
}

TEST(Trip, DoesNotCountTheWanderingOfAPositionAtRest)
{
    Trip trip;
    for (int i = 0; i < 1000; ++i)
        trip.add(at(i % 2 * 1e-5, 0), seconds(i));
    EXPECT_EQ(trip.distanceM(), 0);
}

TEST(Trip, CountsSlowMovementAllTheSame)
{
    Trip trip;
    for (int i = 0; i <= 1000; ++i)
        trip.add(at(i * 1e-6, 0), seconds(i));  // 0.11 m each
    EXPECT_NEAR(trip.distanceM(), 111, 4);
}

}  // namespace
}  // namespace navigator
