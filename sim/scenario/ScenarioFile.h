#pragma once

#include "modem/Scenario.h"
#include "receiver/ReceiverTypes.h"
#include "scenario/JsonNode.h"

#include <string>

namespace arcsim {

/// The content of a scenario file, for the modem and for its receiver.
struct ScenarioFile
{
    modem::Scenario modem{};
    ReceiverScenario receiver{};
};

/// `file` is the text's name in errors; a recording's relative path starts from its folder. Throws ScenarioError.
ScenarioFile parseScenario(const std::string& file, const std::string& text);

/// The scenario of a file, or the default scenario if the name is empty, with a recording of sentences if one is named.
/// Throws ScenarioError.
ScenarioFile scenarioOf(const std::string& file, const std::string& recording);

/// The same for the names in ARCSIM_SCENARIO and ARCSIM_REPLAY.
ScenarioFile scenarioOfEnvironment();

}  // namespace arcsim
