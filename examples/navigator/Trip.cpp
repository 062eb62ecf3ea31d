#include "navigator/Trip.h"

#include <cmath>

namespace navigator {
namespace {

// Positions of a vehicle at rest wander by about a metre; steps below this do not count as movement.
constexpr double kShortestStepM = 3;

constexpr double kMeanEarthRadiusM = 6371008.8;
constexpr double kRadPerDeg = 3.14159265358979323846 / 180;

}  // namespace

void Trip::add(const nmea::Epoch& epoch, std::chrono::milliseconds sinceStart)
{
    ++m_epochs;
    m_epochsWith3D += epoch.fix == nmea::Fix::threeD ? 1 : 0;
    if (epoch.fix == nmea::Fix::none || !epoch.latitudeDeg || !epoch.longitudeDeg)
        return;
    if (!m_firstFix)
        m_firstFix = FirstFix{sinceStart, epoch};
    const Place place{*epoch.latitudeDeg, *epoch.longitudeDeg};
    if (!m_counted)
        m_counted = place;
    const double step = metresBetween(*m_counted, place);
    if (step < kShortestStepM)
        return;
    m_distanceM += step;
    m_counted = place;
}

double Trip::metresBetween(Place from, Place to)
{
    const double sinLatitude = std::sin((to.latitudeDeg - from.latitudeDeg) * kRadPerDeg / 2);
    const double sinLongitude = std::sin((to.longitudeDeg - from.longitudeDeg) * kRadPerDeg / 2);
    const double haversine = sinLatitude * sinLatitude + std::cos(from.latitudeDeg * kRadPerDeg) *
                                                             std::cos(to.latitudeDeg * kRadPerDeg) * sinLongitude *
                                                             sinLongitude;
    return 2 * kMeanEarthRadiusM * std::asin(std::fmin(1, std::sqrt(haversine)));
}

}  // namespace navigator
