#pragma once

#include "receiver/Receiver.h"

#include <string>

namespace arcsim {

/// One epoch of standard sentences, NMEA 0183 version 4.11: RMC, VTG, GGA, then one GSA and GSV for each enabled
/// system; one GSV also where none is in view. Those of QZSS go before other GSV: gpsd does not see the end of an epoch
/// whose last sentence says that no satellite of QZSS is in view, as is so in most of the world. The talker is GN when
/// a second positioning system is enabled and GP with GPS alone; GSV carry the talker of their system. At most 82
/// characters a sentence with its line end.
///
/// Numbers in sentences: GPS 1 to 32, SBAS 33 to 64 among those of GPS, GLONASS 65 to 96, all others their own.
/// SBAS corrections show as fix quality 2 and mode D. A satellite that is not tracked has an empty C/N0.
std::string nmeaEpoch(const Solution& solution, const ReceiverSettings& settings);

}  // namespace arcsim
