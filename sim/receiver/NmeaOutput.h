#pragma once

#include "receiver/Receiver.h"

#include <string>

namespace arcsim {

/// One epoch of standard sentences, NMEA 0183 version 4.11: RMC, VTG, GGA, one GSA per enabled system, GSV for each
/// system with a satellite in view. The talker is GN when a second positioning system is enabled and GP with GPS alone;
/// GSV carry the talker of their system. At most 82 characters a sentence with its line end.
///
/// Numbers in sentences: GPS 1 to 32, SBAS 33 to 64 among those of GPS, GLONASS 65 to 96, all others their own.
/// SBAS corrections show as fix quality 2 and mode D. A satellite that is not tracked has an empty C/N0.
std::string nmeaEpoch(const Solution& solution, const ReceiverSettings& settings);

}  // namespace arcsim
