#pragma once

#include "receiver/ReceiverTypes.h"
#include "scenario/JsonNode.h"

#include <string>

namespace arcsim {

/// What a scenario says to the receiver, but for the seed: startUtc, route, satellites, jamming, noFix and replay of
/// `root`. `scenarioFile` is what the relative paths of other files start from.
void readReceiver(const JsonNode& root, const std::string& scenarioFile, ReceiverScenario& scenario);

}  // namespace arcsim
