#pragma once

#include "receiver/ReceiverTypes.h"

#include <chrono>
#include <vector>

namespace arcsim {

/// Position and motion of a vehicle.
struct Motion
{
    double latitudeDeg = 0;
    double longitudeDeg = 0;
    double altitudeM = 0;
    double speedMps = 0;
    double courseDeg = 0;  ///< 0 while standing still
};

/// A drive along straight legs. Each leg starts after the wait at its first waypoint and has that waypoint's speed.
/// Legs are straight on the map, so keep them below about 100 km. Immutable.
class Route
{
public:
    /// Throws std::runtime_error, which names the wrong value and what is accepted: at least one waypoint, latitudes
    /// -89 to 89, longitudes -180 to 180, altitudes -500 to 9000 m, speeds 0.01 to 300 m/s and waits up to a day
    /// (speed and wait of the last waypoint are ignored).
    explicit Route(std::vector<Waypoint> waypoints);

    /// Before the start the vehicle stands at the first waypoint, after the end at the last one.
    Motion at(std::chrono::milliseconds sinceStart) const;

    /// From the start to the last waypoint, waits included.
    std::chrono::duration<double> duration() const { return std::chrono::duration<double>(m_durationS); }

private:
    struct Leg
    {
        Waypoint from;
        Waypoint to;          ///< longitude without the jump at 180 degrees
        double arrivalS = 0;  ///< at its first waypoint
        double startS = 0;    ///< after the wait there
        double durationS = 0;
        double courseDeg = 0;
    };

    std::vector<Leg> m_legs;
    Waypoint m_first;
    Waypoint m_last;
    double m_durationS = 0;
};

}  // namespace arcsim
