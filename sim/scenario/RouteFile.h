#pragma once

#include "receiver/ReceiverTypes.h"
#include "scenario/JsonNode.h"

#include <string>
#include <vector>

namespace arcsim {

/// A list of waypoints, or {"gpx","speedMps"} with the name of a GPX file beside the scenario.
std::vector<Waypoint> readRoute(const JsonNode& node, const std::string& scenarioFile);

/// The path of a file that a scenario names: relative to the scenario's folder, unless absolute.
std::string besideScenario(const std::string& scenarioFile, const std::string& name);

}  // namespace arcsim
