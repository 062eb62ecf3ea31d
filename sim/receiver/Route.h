#pragma once

#include "receiver/ReceiverTypes.h"

#include <chrono>
#include <vector>

namespace arcsim {

/// Where a vehicle is and how it moves.
struct Motion
{
    double latitudeDeg = 0;
    double longitudeDeg = 0;
    double altitudeM = 0;
    double speedMps = 0;
    double courseDeg = 0;  ///< 0 while standing still
};

/// A drive along straight legs, each at the speed of the waypoint it starts from and after the wait there. Legs are
/// straight on the map, so keep them below some 100 km. Immutable.
class Route
{
public:
    /// Throws std::runtime_error, which says what was found and what is accepted: at least one waypoint, latitudes -89
    /// to 89, longitudes -180 to 180, altitudes -500 to 9000 m, speeds above 0 up to 300 m/s and waits up to a day (any
    /// in the last).
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
