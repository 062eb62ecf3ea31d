#include "receiver/RawOutput.h"

#include "receiver/Nmea.h"

#include <algorithm>

namespace arcsim {

namespace {

constexpr double kSpeedOfLightMps = 299792458;
constexpr double kCarrierHz = 1575.42e6;
constexpr double kClockErrorS = 1e-3;

std::string nameOf(SatelliteId id)
{
    constexpr char kLetters[] = "GRECJS";  // in the order of GnssSystem
    const int number = id.system == GnssSystem::Sbas ? id.number - 100 : id.number;
    return kLetters[indexOf(id.system)] + nmea::number(number, 0, 2);
}

}  // namespace

std::string rawEpoch(const Solution& solution)
{
    std::string measurements;
    int count = 0;
    for (const Observation& observation : solution.observations) {
        if (!observation.carrierDbHz)
            continue;
        ++count;
        measurements += nmea::sentence(
            "PSIM,M," + std::to_string(count) + ',' + nameOf(observation.id) + ',' +
            nmea::number(observation.look.rangeM + kClockErrorS * kSpeedOfLightMps, 3) + ',' +
            nmea::number(-observation.rangeRateMps * kCarrierHz / kSpeedOfLightMps, 2) + ',' +
            std::to_string(*observation.carrierDbHz) + ',' + nmea::number(observation.look.elevationDeg, 1) + ',' +
            nmea::number(observation.look.azimuthDeg, 1) + ',' + (observation.used ? '1' : '0'));
    }
    const std::string moment =
        solution.timeKnown ? nmea::date(solution.utc) + ',' + nmea::time(solution.utc) : std::string(",");
    return nmea::sentence("PSIM,T," + moment + ',' + std::to_string(count)) + measurements;
}

}  // namespace arcsim
