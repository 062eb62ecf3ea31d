#include "receiver/Constellation.h"

#include "receiver/Noise.h"

#include <cmath>

namespace arcsim {

namespace {

constexpr double kEarthMuM3PerS2 = 3.986004418e14;
constexpr double kEarthRateDegPerS = 7.2921151467e-5 / kRadPerDeg;
constexpr double kGeosynchronousRadiusM = 42164.17e3;

// Greenwich's right ascension at the reference time, which is 2000-01-01 12:00 UTC.
constexpr double kReferenceGreenwichDeg = 280.46061837;
constexpr std::chrono::hours kReferenceSinceEpoch{10957 * 24 + 12};

/// Planes of equally spaced satellites, numbered plane by plane. All numbers stay below 33: common NMEA readers take 33
/// to 64 for SBAS, whatever the talker.
struct WalkerRow
{
    GnssSystem system;
    int firstNumber;
    int planes;
    int perPlane;
    double inclinationDeg;
    double radiusM;
};
constexpr WalkerRow kWalkerRows[] = {
    {GnssSystem::Gps, 1, 6, 5, 55.0, 26559.7e3},
    {GnssSystem::Glonass, 1, 3, 8, 64.8, 25508.2e3},
    {GnssSystem::Galileo, 1, 3, 8, 56.0, 29600.3e3},
    {GnssSystem::Beidou, 9, 3, 8, 55.0, 27906.1e3},
};

/// Satellites that stay over one longitude; inclined ones draw a figure of eight there.
struct GeosynchronousRow
{
    GnssSystem system;
    int number;
    double longitudeDeg;
    double inclinationDeg;
    double nodeDeg;
};
constexpr GeosynchronousRow kGeosynchronousRows[] = {
    {GnssSystem::Beidou, 1, 140.0, 0, 0},    {GnssSystem::Beidou, 2, 80.0, 0, 0},
    {GnssSystem::Beidou, 3, 110.5, 0, 0},    {GnssSystem::Beidou, 4, 160.0, 0, 0},
    {GnssSystem::Beidou, 5, 58.75, 0, 0},    {GnssSystem::Beidou, 6, 118.0, 55, 0},
    {GnssSystem::Beidou, 7, 118.0, 55, 120}, {GnssSystem::Beidou, 8, 118.0, 55, 240},
    {GnssSystem::Qzss, 2, 135.0, 41, 0},     {GnssSystem::Qzss, 3, 135.0, 41, 120},
    {GnssSystem::Qzss, 4, 135.0, 41, 240},   {GnssSystem::Qzss, 7, 127.0, 0, 0},
    {GnssSystem::Sbas, 123, 31.5, 0, 0},     {GnssSystem::Sbas, 125, -16.0, 0, 0},
    {GnssSystem::Sbas, 127, 55.0, 0, 0},     {GnssSystem::Sbas, 128, 83.0, 0, 0},
    {GnssSystem::Sbas, 130, 80.0, 0, 0},     {GnssSystem::Sbas, 131, -117.0, 0, 0},
    {GnssSystem::Sbas, 133, -129.0, 0, 0},   {GnssSystem::Sbas, 135, -125.0, 0, 0},
    {GnssSystem::Sbas, 136, 5.0, 0, 0},      {GnssSystem::Sbas, 137, 127.0, 0, 0},
    {GnssSystem::Sbas, 140, 95.0, 0, 0},     {GnssSystem::Sbas, 141, 167.0, 0, 0},
};

}  // namespace

Constellation::Constellation(std::uint32_t seed)
{
    for (const WalkerRow& row : kWalkerRows) {
        const double rateDegPerS = std::sqrt(kEarthMuM3PerS2 / std::pow(row.radiusM, 3)) / kRadPerDeg;
        const double nodeOffsetDeg = 360 * noise({seed, indexOf(row.system), 1});
        const double phaseOffsetDeg = 360 * noise({seed, indexOf(row.system), 2});
        const int count = row.planes * row.perPlane;
        for (int i = 0; i < count; ++i) {
            const int plane = i / row.perPlane;
            const int slot = i % row.perPlane;
            m_orbits.push_back({{row.system, row.firstNumber + i},
                                row.radiusM,
                                row.inclinationDeg,
                                nodeOffsetDeg + 360.0 * plane / row.planes,
                                phaseOffsetDeg + 360.0 * slot / row.perPlane + 360.0 * plane / count,
                                rateDegPerS});
        }
    }
    // Node plus phase minus Greenwich is the longitude, at all times since both turn with the earth.
    for (const GeosynchronousRow& row : kGeosynchronousRows)
        m_orbits.push_back({{row.system, row.number},
                            kGeosynchronousRadiusM,
                            row.inclinationDeg,
                            row.nodeDeg,
                            row.longitudeDeg + kReferenceGreenwichDeg - row.nodeDeg,
                            kEarthRateDegPerS});
}

Ecef Constellation::position(std::size_t index, std::chrono::system_clock::time_point utc) const
{
    const Orbit& orbit = m_orbits[index];
    const double timeS = std::chrono::duration<double>(utc.time_since_epoch() - kReferenceSinceEpoch).count();
    const double phase = std::fmod(orbit.phaseDeg + orbit.rateDegPerS * timeS, 360) * kRadPerDeg;
    const double nodeDeg = orbit.nodeDeg - kReferenceGreenwichDeg - kEarthRateDegPerS * timeS;
    const double node = std::fmod(nodeDeg, 360) * kRadPerDeg;
    const double inclination = orbit.inclinationDeg * kRadPerDeg;

    const double along = orbit.radiusM * std::cos(phase);
    const double across = orbit.radiusM * std::sin(phase);
    return {along * std::cos(node) - across * std::cos(inclination) * std::sin(node),
            along * std::sin(node) + across * std::cos(inclination) * std::cos(node), across * std::sin(inclination)};
}

}  // namespace arcsim
