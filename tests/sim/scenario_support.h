#pragma once

#include "scenario/ScenarioFile.h"

#include <string>

namespace scenario_test {

/// What is wrong with a scenario file s.json of this text.
inline std::string errorOf(const std::string& text)
{
    try {
        arcsim::parseScenario("s.json", text);
    } catch (const arcsim::ScenarioError& error) {
        return error.what();
    }
    return "accepted";
}

inline arcsim::ScenarioFile scenarioOf(const std::string& text)
{
    return arcsim::parseScenario("s.json", text);
}

}  // namespace scenario_test
