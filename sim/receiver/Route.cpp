#include "receiver/Route.h"

#include "receiver/Geodesy.h"

#include <cmath>
#include <sstream>
#include <stdexcept>

namespace arcsim {

namespace {

void requireWithin(std::size_t index, const char* what, double value, double lowest, double highest)
{
    if (value >= lowest && value <= highest)  // false for NaN
        return;
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(12);
    text << "route: waypoint " << index + 1 << " has the " << what << ' ' << value << "; accepted are " << lowest
         << " to " << highest;
    throw std::runtime_error(text.str());
}

void requireSensible(const std::vector<Waypoint>& waypoints)
{
    constexpr double kSlowestMps = 0.01;  // slower legs would never end
    constexpr double kFastestMps = 300;
    constexpr double kLongestWaitS = 24 * 3600;
    if (waypoints.empty())
        throw std::runtime_error("route: no waypoint; at least one is needed");
    for (std::size_t i = 0; i < waypoints.size(); ++i) {
        requireWithin(i, "latitude", waypoints[i].latitudeDeg, -89, 89);  // east has no meaning at the poles
        requireWithin(i, "longitude", waypoints[i].longitudeDeg, -180, 180);
        requireWithin(i, "altitude in metres", waypoints[i].altitudeM, -500, 9000);
        if (i + 1 == waypoints.size())
            break;
        requireWithin(i, "speed in m/s", waypoints[i].speedMps, kSlowestMps, kFastestMps);
        requireWithin(i, "wait in s", std::chrono::duration<double>(waypoints[i].wait).count(), 0, kLongestWaitS);
    }
}

double wrapLongitude(double longitudeDeg)
{
    if (longitudeDeg > 180)
        return longitudeDeg - 360;
    return longitudeDeg < -180 ? longitudeDeg + 360 : longitudeDeg;
}

Motion standingAt(const Waypoint& waypoint)
{
    return {waypoint.latitudeDeg, waypoint.longitudeDeg, waypoint.altitudeM, 0, 0};
}

}  // namespace

Route::Route(std::vector<Waypoint> waypoints)
{
    requireSensible(waypoints);
    m_first = waypoints.front();
    m_last = waypoints.back();
    for (std::size_t i = 0; i + 1 < waypoints.size(); ++i) {
        Leg leg;
        leg.from = waypoints[i];
        leg.to = waypoints[i + 1];
        leg.to.longitudeDeg = leg.from.longitudeDeg + wrapLongitude(leg.to.longitudeDeg - leg.from.longitudeDeg);
        const double midLatitude = (leg.from.latitudeDeg + leg.to.latitudeDeg) / 2;
        const double northM = (leg.to.latitudeDeg - leg.from.latitudeDeg) * northMetresPerDeg(midLatitude);
        const double eastM = (leg.to.longitudeDeg - leg.from.longitudeDeg) * eastMetresPerDeg(midLatitude);
        leg.arrivalS = m_durationS;
        leg.startS = leg.arrivalS + std::chrono::duration<double>(leg.from.wait).count();
        leg.durationS = std::hypot(northM, eastM) / leg.from.speedMps;
        leg.courseDeg = std::fmod(std::atan2(eastM, northM) / kRadPerDeg + 360, 360);
        m_durationS = leg.startS + leg.durationS;
        m_legs.push_back(leg);
    }
}

Motion Route::at(std::chrono::milliseconds sinceStart) const
{
    const double timeS = std::chrono::duration<double>(sinceStart).count();
    if (timeS < 0)
        return standingAt(m_first);
    for (const Leg& leg : m_legs) {
        if (timeS >= leg.startS + leg.durationS)
            continue;
        if (timeS < leg.startS)
            return standingAt(leg.from);
        const double part = (timeS - leg.startS) / leg.durationS;
        const auto between = [part](double from, double to) { return from + part * (to - from); };
        return {between(leg.from.latitudeDeg, leg.to.latitudeDeg),
                wrapLongitude(between(leg.from.longitudeDeg, leg.to.longitudeDeg)),
                between(leg.from.altitudeM, leg.to.altitudeM), leg.from.speedMps, leg.courseDeg};
    }
    return standingAt(m_last);
}

}  // namespace arcsim
