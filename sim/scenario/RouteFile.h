#pragma once

#include "receiver/ReceiverTypes.h"
#include "scenario/JsonNode.h"

#include <string>
#include <vector>

namespace arcsim {

/// A list of waypoints, or {"gpx","speedMps"} with the name of a GPX file beside the scenario.
std::vector<Waypoint> readRoute(const JsonNode& node, const std::string& scenarioFile);

/// Where a file is that a scenario names: beside it, unless the name is absolute.
std::string besideScenario(const std::string& scenarioFile, const std::string& name);

}  // namespace arcsim
