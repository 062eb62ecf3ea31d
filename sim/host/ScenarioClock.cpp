#include "host/ScenarioClock.h"

#include "scenario/JsonNode.h"

#include <cstdlib>
#include <string>

namespace arcsim {

ScenarioClock::Mode modeOf(const std::string& origin, const std::string& word)
{
    if (word.empty() || word == "real")
        return ScenarioClock::Mode::real;
    if (word == "virtual")
        return ScenarioClock::Mode::virtualTime;
    throw ScenarioError(origin + ": \"" + word + "\" is not accepted; accepted: real, virtual");
}

ScenarioClock::Mode modeOfEnvironment()
{
    const char* const word = std::getenv("ARCSIM_TIME");
    return modeOf("ARCSIM_TIME", word == nullptr ? "" : word);
}

}  // namespace arcsim
