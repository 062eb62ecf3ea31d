#pragma once

#include "modem/Scenario.h"
#include "receiver/ReceiverTypes.h"
#include "scenario/JsonNode.h"

#include <string>

namespace arcsim {

/// What a scenario file says: to the modem and to its receiver.
struct ScenarioFile
{
    modem::Scenario modem{};
    ReceiverScenario receiver{};
};

/// `file` is the text's name for errors, and what a recording's relative path starts from. Throws ScenarioError.
ScenarioFile parseScenario(const std::string& file, const std::string& text);

/// The scenario of a file, or the factory's if there is no name; with a recording of sentences if one is named. Throws
/// ScenarioError.
ScenarioFile scenarioOf(const std::string& file, const std::string& recording);

/// The same for the names in ARCSIM_SCENARIO and ARCSIM_REPLAY.
ScenarioFile scenarioOfEnvironment();

}  // namespace arcsim
