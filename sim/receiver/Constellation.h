#pragma once

// The satellites of all systems on circular orbits. Inclination, period, number of planes and geostationary longitudes
// are near the real ones; the phases follow from the seed. The sky is plausible but predicts no real one.

#include "receiver/Geodesy.h"
#include "receiver/ReceiverTypes.h"

#include <chrono>
#include <cstdint>
#include <vector>

namespace arcsim {

/// A satellite, by its number within its own system: GPS 1 to 30, GLONASS slot 1 to 24, Galileo 1 to 24, BeiDou 1 to
/// 32, QZSS 2 to 7, SBAS 120 to 158.
struct SatelliteId
{
    GnssSystem system = GnssSystem::Gps;
    int number = 0;
};

class Constellation
{
public:
    explicit Constellation(std::uint32_t seed);

    std::size_t size() const { return m_orbits.size(); }
    SatelliteId id(std::size_t index) const { return m_orbits[index].id; }
    Ecef position(std::size_t index, std::chrono::system_clock::time_point utc) const;

private:
    struct Orbit
    {
        SatelliteId id;
        double radiusM = 0;
        double inclinationDeg = 0;
        double nodeDeg = 0;   ///< right ascension of the ascending node
        double phaseDeg = 0;  ///< from the node along the orbit, at the reference time
        double rateDegPerS = 0;
    };

    std::vector<Orbit> m_orbits;
};

}  // namespace arcsim
