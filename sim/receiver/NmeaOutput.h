#pragma once

#include "receiver/Receiver.h"

#include <string>

namespace arcsim {

/// One epoch of standard sentences, NMEA 0183 version 4.11: RMC, VTG, GGA, then one GSA and the GSV of each enabled
/// system; one GSV even if no satellite is in view. QZSS comes first among the GSV: gpsd misses the end of an epoch
/// whose last sentence reports no QZSS satellite in view, which is normal in most of the world. The talker is GN when a
/// second positioning system is enabled and GP with GPS alone; GSV carry the talker of their system. A sentence has at
/// most 82 characters with its line end.
///
/// Satellite numbers: GPS 1 to 32, SBAS 33 to 64 in the GPS sentences, GLONASS 65 to 96, all others their own. SBAS
/// corrections show as fix quality 2 and mode D. A satellite that is not tracked has an empty C/N0.
std::string nmeaEpoch(const Solution& solution, const ReceiverSettings& settings);

}  // namespace arcsim
