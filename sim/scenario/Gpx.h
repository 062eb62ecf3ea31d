#pragma once

#include "receiver/ReceiverTypes.h"

#include <string>
#include <vector>

namespace arcsim {

inline constexpr double kDefaultGpxSpeedMps = 10;

/// The tracks of a GPX file, joined; without any its routes, without these its waypoints. A point without an elevation
/// has that of the one before it.
///
/// If all points have times, these give the speeds, and a pause at one place becomes a wait. Otherwise all legs are
/// driven at `speedMps`. A point at the place of the one before it is none of its own. Throws ScenarioError, which
/// names file, line, point (counted from 1) and what is accepted. `file` is the text's name for errors.
std::vector<Waypoint> parseGpx(const std::string& file, const std::string& text, double speedMps);

/// The same of a file's content.
std::vector<Waypoint> loadGpx(const std::string& file, double speedMps);

}  // namespace arcsim
