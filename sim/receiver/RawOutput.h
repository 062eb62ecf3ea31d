#pragma once

#include "receiver/Receiver.h"

#include <string>

namespace arcsim {

/// One epoch of the raw format. The format is this simulator's own; real modems have formats of their own.
///
/// An epoch is one time sentence and one measurement sentence for each tracked satellite:
///
///     $PSIM,T,ddmmyy,hhmmss.ss,count*hh
///     $PSIM,M,index,satellite,pseudorange,doppler,cn0,elevation,azimuth,used*hh
///
/// count: measurement sentences that follow. index: from 1. satellite: a letter (G GPS, R GLONASS, E Galileo, C BeiDou,
/// J QZSS, S SBAS) and two digits; SBAS counts from 100. pseudorange: metres, with the receiver's clock error of 1 ms.
/// doppler: Hz at 1575.42 MHz, positive while the satellite comes nearer. cn0: dB-Hz. elevation and azimuth: degrees.
/// used: 1 in the fix, else 0. Date and time are empty until the first satellite is tracked.
std::string rawEpoch(const Solution& solution);

}  // namespace arcsim
