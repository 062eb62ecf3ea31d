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

/// The file named by ARCSIM_SCENARIO, or the factory's scenario; with the recording named by ARCSIM_REPLAY, if any.
/// Throws ScenarioError.
ScenarioFile scenarioOfEnvironment();

}  // namespace arcsim
