#pragma once

#include "receiver/ReceiverTypes.h"

#include <string>
#include <vector>

namespace arcsim {

inline constexpr double kDefaultGpxSpeedMps = 10;

/// The joined tracks of a GPX file; if there are none, its routes; if there are none either, its waypoints. A point
/// without an elevation takes that of the point before it.
///
/// If all points have times, these give the speeds, and a pause at one place becomes a wait. Otherwise all legs are
/// driven at `speedMps`. A point at the same place as the one before is merged with it. Throws ScenarioError, which
/// names file, line, point (counted from 1) and what is accepted. `file` is the text's name for errors.
std::vector<Waypoint> parseGpx(const std::string& file, const std::string& text, double speedMps);

/// The same for a file's content.
std::vector<Waypoint> loadGpx(const std::string& file, double speedMps);

}  // namespace arcsim
